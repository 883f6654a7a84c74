#ifndef TESTS_LIBRARY_DIFFERENTIAL_READER_H
#define TESTS_LIBRARY_DIFFERENTIAL_READER_H

#include <optional>
#include <string>
#include <vector>

// A second reading of property lists, slow and obvious on purpose and without a line in common with the
// driver's: the tests hold the driver's answers against it. It takes well-formed files only.

struct SlowValue {
    std::string element;            // the name of the XML element: "dict", "string", "true" ...
    std::string text;               // its characters, references decoded
    std::vector<std::string> keys;  // of a dictionary, in step with `items`
    std::vector<SlowValue> items;   // of a dictionary or an array

    // The value of a dictionary's key, null without it.
    const SlowValue *Find(const std::string &key) const;
};

// Throws std::runtime_error for what it cannot read.
SlowValue ReadSlowPropertyList(const std::string &xml);

// The text that an attribute gets from a value; none where the value has no text form.
std::optional<std::string> SlowText(const SlowValue *value);

// The path behind a file URL.
std::string SlowPath(const std::string &url);

#endif
