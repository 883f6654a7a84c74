#include "tests/host/host_test.h"

#include <sys/wait.h>

#include <cstdlib>

namespace fs = std::filesystem;

std::set<std::string> FilesBelow(const fs::path &folder) {
    std::set<std::string> files;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) files.insert(fs::relative(entry.path(), folder).string());
    }
    return files;
}

HostTest::HostTest() {
    // A test runner in the background has its interrupts ignored, and a child inherits that.
    folder_.Write("host", "#!/bin/sh\nexec env --default-signal '" VELMARHOST_PROGRAM
                          "' --driver '" WATCHED_DRIVER_MODULE "' \"$@\"\n");
    fs::permissions(path_ + "host", fs::perms::owner_all);
    fs::create_directory(path_ + "tmp");
    for (const auto &[name, value] : place_.environment)
        Set(name, value);
    environment_ += "export TMPDIR='" + path_ + "tmp' PATH='" + path_ +
                    "':$PATH SHELL=/bin/sh TERM=xterm TZ=UTC NO_COLOR=\n";
    Rename("<string>Fog<", "<string>RAIN &#38; THUNDER<");
    Rename("iTunes DJ", "AC/DC");
    Rename("Recently Added", "Evil\x1b[31m\nName\xff");
    Rename("Evenings", "Day One");
}

HostResult HostTest::Shell(const std::string &line) {
    const std::string script =
        environment_ + "cd '" + path_ + "'\n{ " + line + "; } >output 2>errors\nexit $?";
    const int status = std::system(script.c_str());
    EXPECT_EQ(std::distance(fs::directory_iterator(path_ + "tmp"), {}), 0) << line;
    HostResult result{WEXITSTATUS(status), ReadWholeFile(path_ + "output"), ReadWholeFile(path_ + "errors")};
    EXPECT_EQ(result.errors.find("LEFT OPEN"), std::string::npos) << line;
    return result;
}

std::string HostTest::OnTerminal(const std::string &arguments, int columns) {
    const std::string line = "stty cols " + std::to_string(columns) + "; host " + arguments;
    return Shell("script -qec '" + line + "' /dev/null </dev/null").output;
}

HostResult HostTest::Interrupt(const std::string &arguments, const std::string &folder,
                               const std::string &pattern, int signal) {
    const std::string kill = "kill -" + std::to_string(signal) + " $!; ";
    return Shell("host " + arguments + " & for i in $(seq 2000); do ls -A '" + folder + "' | grep -q '" +
                 pattern + "' && break; sleep 0.01; done; " + kill + kill + "wait $!");
}

void HostTest::Expect(const Runs &runs) {
    for (const auto &[arguments, exit_code, words] : runs) {
        const HostResult result = Run(arguments);
        EXPECT_EQ(result.exit_code, exit_code) << arguments;
        EXPECT_THAT((exit_code == 0 ? result.output : "") + result.errors, testing::HasSubstr(words))
            << arguments;
        EXPECT_EQ(exit_code == 0 ? "" : result.output, "") << arguments;
    }
}

void HostTest::Set(const std::string &name, const std::string &value) {
    environment_ += "export " + name + "='" + value + "'\n";
}

void HostTest::Rename(const std::string &old_text, const std::string &new_text) {
    for (std::size_t at = 0; (at = library_xml_.find(old_text, at)) != std::string::npos;
         at += new_text.size())
        library_xml_.replace(at, old_text.size(), new_text);
    folder_.Write(place_.library_xml, library_xml_);
}
