"""The order of the folders holds, and the check of it sees what breaks it."""

import tempfile
import unittest
from pathlib import Path

from includes import violations

SOURCES = Path(__file__).resolve().parents[2] / "src"


class Includes(unittest.TestCase):
    def test_sources_keep_the_order(self):
        self.assertGreater(len(list(SOURCES.rglob("*.h"))), 30)
        self.assertEqual(violations(SOURCES), [])

    def test_every_kind_of_violation_is_found(self):
        cases = [
            # file, its include, what is said of it
            ("base/Text.cpp", '"storage/Store.h"', "base does not build on storage"),
            ("storage/Store.cpp", '"reminders/Upcoming.h"', "storage does not build on reminders"),
            ("alerts/AlertQueue.h", '"ui/alert/AlertWindow.h"', "alerts does not build on ui/alert"),
            ("platform/linux/Loop.h", '"app/TendelApp.h"', "platform does not build on app"),
            ("platform/qt/Screens.h", '"ui/theme/Theme.h"', "platform does not build on ui/theme"),
            ("ui/theme/Theme.cpp", '"ui/alert/AlertWindow.h"', "ui/theme does not build on ui/alert"),
            ("ui/alert/AlertView.cpp", '"ui/window/MainWindow.h"', "ui/alert does not build on"),
            ("ui/window/MainWindow.h", '"platform/qt/Screens.h"', "does not build on platform"),
            ("ui/new/New.h", "<QWidget>", "is in no folder of the table"),
            ("app/TendelApp.h", '"Text.h"', "is not a file named from the root"),
            ("elsewhere/New.h", "<string>", "is in no folder of the table"),
            ("stray.cpp", "<string>", "is in no folder of the table"),
            ("alerts/AlertQueue.cpp", "<QString>", "<QString> does not belong in alerts"),
            ("reminders/Schedule.cpp", "<unicode/calendar.h>", "does not belong in reminders"),
            ("focus/Timer.cpp", "<unistd.h>", "does not belong in focus"),
            ("storage/Store.h", "<sqlite3.h>", "belongs in .cpp files"),
            ("base/Calendar.h", "<unicode/timezone.h>", "belongs in .cpp files"),
            ("storage/Defaults.h", "<nlohmann/json.hpp>", "belongs in .cpp files"),
            ("platform/linux/Loop.h", "<sys/timerfd.h>", "belongs in .cpp files"),
        ]
        for file, include, reason in cases:
            with self.subTest(file=file, include=include):
                found = self.check({file: f"#include {include}\n"})
                self.assertEqual(len(found), 1, found)
                self.assertIn(reason, found[0])

    def test_what_is_allowed_passes(self):
        allowed = {
            "base/Text.cpp": "#include <string>\n#include <unicode/unistr.h>\n",
            "storage/Store.cpp": '#include <sqlite3.h>\n#include "base/Instant.h"\n',
            "storage/Store.h": "#include <nlohmann/json_fwd.hpp>\n",
            "platform/qt/Screens.h": '#include <QScreen>\n#include "alerts/AlertQueue.h"\n',
            "ui/Interface.cpp": '#include "ui/window/MainWindow.h"\n#include "app/TendelApp.h"\n',
            "ui/alert/AlertWindow.cpp": '#include "ui/theme/Theme.h"\n#include "AlertWindow.moc"\n',
            "main.cpp": '#include "platform/qt/Screens.h"\n#include "ui/alert/AlertWindow.h"\n',
        }
        self.assertEqual(self.check(allowed), [])

    def check(self, files):
        """The violations in a tree of these files, among the headers that they may name."""
        headers = [
            "alerts/AlertQueue.h", "app/TendelApp.h", "base/Instant.h", "reminders/Upcoming.h",
            "platform/qt/Screens.h", "storage/Store.h", "ui/alert/AlertWindow.h", "ui/theme/Theme.h",
            "ui/window/MainWindow.h",
        ]
        with tempfile.TemporaryDirectory() as folder:
            for name, text in {**dict.fromkeys(headers, ""), **files}.items():
                path = Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            return violations(Path(folder))


if __name__ == "__main__":
    unittest.main()
