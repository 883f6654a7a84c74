// Prints the list in each file that it is given, a line for each, in the form of Describe.
#include <cstdio>

#include "tests/platform/core_foundation/list_text.h"

int main(int count, char **arguments) {
    for (int i = 1; i < count; ++i)
        std::printf("%s\n", Describe(ReadFile(arguments[i]).get()).c_str());
}
