// What only a terminal is shown: colour and progress.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/host_process.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char *kFolderColor = "\x1b[1;34m";

TEST(Terminal, ColorsOnlyWhereTheyAreWanted) {
    HostProcess host;
    EXPECT_THAT(host.Run({"ls"}).output, Not(HasSubstr("\x1b")));
    EXPECT_THAT(host.Run({"--color", "always", "ls"}).output, HasSubstr(kFolderColor));
    EXPECT_THAT(host.RunOnTerminal({"ls"}, 80).output, HasSubstr(kFolderColor));
    EXPECT_THAT(host.RunOnTerminal({"--color", "never", "ls"}, 80).output, Not(HasSubstr("\x1b")));
    host.Set("NO_COLOR", "1");
    EXPECT_THAT(host.RunOnTerminal({"ls"}, 80).output, Not(HasSubstr("\x1b")));
    host.Set("NO_COLOR", "");
    host.Set("TERM", "dumb");
    EXPECT_THAT(host.RunOnTerminal({"ls"}, 80).output, Not(HasSubstr("\x1b")));
}

TEST(Terminal, HostileNamesStaySpelledOut) {
    HostProcess host;
    EXPECT_THAT(host.RunOnTerminal({"tree", "playlist"}, 80).output, Not(HasSubstr("\x1b[31m")));
    EXPECT_THAT(host.RunOnTerminal({"ls", "--json", "playlist"}, 80).output, Not(HasSubstr("\x1b[31m")));
}

TEST(Terminal, ProgressIsDrawnAndTakenAway) {
    HostProcess host;
    const std::vector<std::string> arguments = {"get", "library/good", "--to",
                                                (host.folder() / "target").string()};
    const std::string shown = host.RunOnTerminal(arguments, 40).output;
    EXPECT_THAT(shown, HasSubstr("\r["));
    EXPECT_THAT(shown, HasSubstr("\r\x1b[Kgot 3 files"));
    host.Set("TERM", "dumb");
    EXPECT_THAT(host.RunOnTerminal(arguments, 40).output, Not(HasSubstr("\r[")));
    EXPECT_THAT(host.Run(arguments).errors, Not(HasSubstr("\r")));
}

}  // namespace
