#include <QApplication>

#include <gtest/gtest.h>

namespace {

// One application for all cases of the program, without a display.
class QtEnvironment : public testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        application_ = std::make_unique<QApplication>(count_, arguments_);
        QApplication::setQuitOnLastWindowClosed(false);
    }
    void TearDown() override { application_.reset(); }

private:
    int count_ = 1;
    char name_[12] = "window_test";
    char* arguments_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> application_;
};

const auto* environment = testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
