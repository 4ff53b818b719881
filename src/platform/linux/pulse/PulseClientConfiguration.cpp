#include "platform/linux/pulse/PulseClientConfiguration.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace tendel {

namespace {

constexpr auto variable = "PULSE_CLIENTCONFIG";

// The file that libpulse would read: the first of these that is there.
std::filesystem::path usersFile() {
    if (qEnvironmentVariableIsSet(variable)) return qgetenv(variable).toStdString();
    const std::filesystem::path home = qgetenv("HOME").toStdString();
    for (const auto& file : {home / ".pulse/client.conf", home / ".config/pulse/client.conf"}) {
        std::error_code error;
        if (file.is_absolute() && std::filesystem::exists(file, error)) return file;
    }
    return "/etc/pulse/client.conf";
}

// Of the files beside it the later ones count more.
std::vector<std::filesystem::path> dropIns(const std::filesystem::path& file) {
    std::vector<std::filesystem::path> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(file.string() + ".d", error))
        if (entry.path().extension() == ".conf") found.push_back(entry.path());
    std::ranges::sort(found);
    return found;
}

std::string configuration() {
    const auto file = usersFile();
    std::string text = ".include " + file.string() + "\n";
    for (const auto& dropIn : dropIns(file))
        text += ".include " + dropIn.string() + "\n";
    return text + "enable-shm = no\n";
}

}  // namespace

PulseClientConfiguration::PulseClientConfiguration()
    : file_(::memfd_create("client.conf", MFD_CLOEXEC)) {
    const std::string text = configuration();
    if (!file_ || ::write(file_.value(), text.data(), text.size()) < 0) return;
    if (qEnvironmentVariableIsSet(variable)) before_ = qgetenv(variable);
    qputenv(variable, "/proc/self/fd/" + QByteArray::number(file_.value()));
}

PulseClientConfiguration::~PulseClientConfiguration() {
    if (before_)
        qputenv(variable, *before_);
    else
        qunsetenv(variable);
}

}  // namespace tendel
