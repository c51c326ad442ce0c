// Runs the example as a user does, with either store.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "qmt/platform/registry.h"
#include "support/file_content.h"
#include "support/temp_directory.h"

namespace {

TEST(SettingsExample, FillsTheStoreAndTellsABadSetting) {
    for (std::string const store : {"files", "registry"}) {
        QMT::TempDirectory const directory;
        if (store == "registry" && !QMT::MakeDatabaseRegistry(directory.Path(u"a"), directory.Path(u"b"))) {
            std::cout << "Without the registry, which is the user's own here\n";
            continue;
        }
        std::string const place = directory.Place().string();
        // The status and what it says.
        auto const run = [&](std::string const& arguments) {
            std::string const command = SETTINGS_PROGRAM " " + arguments + " > " + place + "/said 2>&1";
            int const status = std::system(command.c_str());
            std::string said = std::to_string(status) + QMT::ContentOf(place + "/said");
            std::erase(said, '\r'); // part of a line's end, on some systems
            return said;
        };
        std::string const stored =
            "[Audio]\nVolume = 0.8\n[Language]\nCountry = DE\nGreeting = on\nStringTable = "
            "\n[Time]\nMinutesPerSlot = ";
        std::string const first = run(store + " " + place);
        EXPECT_EQ(first.find("0Hello "), 0U) << first;
        EXPECT_NE(first.find(stored + "30\n"), std::string::npos) << first;
        std::string const report = QMT::ContentOf(place + "/report.txt", std::ios::in);
        EXPECT_EQ(report.find("(00000000) started, minutes in a slot 30\n("), 0U) << report;
        EXPECT_NE(report.find(") greeted\n("), std::string::npos) << report;
        std::string const bad = run(store + " " + place + " Time MinutesPerSlot 1441");
        EXPECT_EQ(bad.find("0! Error reading configuration. In section [Time] entry : MinutesPerSlot. "
                           "Entry greater than allowed maximum of 1440\nHello "),
                  0U)
            << bad;
        EXPECT_NE(bad.find(stored + "1441\n"), std::string::npos) << bad;
        EXPECT_NE(run(store + " " + place + "/said/below").find("! Couldn't"), std::string::npos);
    }
}

} // namespace
