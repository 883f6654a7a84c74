#include "content/xml_limits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>

#include "content/xml_document.h"
#include "platform/limits.h"

namespace {

size_t DepthOf(const XmlElement &above) {
    size_t depth = 0;
    for (const XmlElement *child = above.first_node(); child != nullptr; child = child->next_sibling()) {
        const bool is_element = child->type() == boost::property_tree::detail::rapidxml::node_element;
        if (is_element) depth = std::max(depth, 1 + DepthOf(*child));
    }
    return depth;
}

std::string Repeated(const std::string &text, size_t count) {
    std::string result;
    for (size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

// Whatever the library makes of a document, the measure must not see fewer levels: around the document stand
// as many levels as make the two agree or not on the deepest one.
TEST(XmlLimits, AgreeWithTheLibraryOnWhatIsMarkup) {
    constexpr std::array kPieces = {"<a>",        "</a>", "<b/>", "<c d='", "'",         "\"",   ">",
                                    "/>",         "<!--", "-->",  "]]>",    "<![CDATA[", "<?p ", "?>",
                                    "<!DOCTYPE ", "[",    "]",    "<!x",    "<e\"",      "=",    " "};
    std::mt19937 random(7);
    int parsed = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string inner;
        for (size_t pieces = random() % 9; pieces > 0; --pieces)
            inner += kPieces[random() % kPieces.size()];
        const auto tree = ParseXml("<r>" + inner + "</r>");
        if (!tree) continue;
        ++parsed;
        const size_t around = limits::kXmlDepth.value - DepthOf(tree->top());
        const std::string head = Repeated("<o>", around);
        const std::string tail = Repeated("</o>", around);
        ASSERT_TRUE(IsWithinXmlLimits(head + "<r>" + inner + "</r>" + tail)) << inner;
        ASSERT_FALSE(IsWithinXmlLimits("<o>" + head + "<r>" + inner + "</r></o>" + tail)) << inner;
    }
    EXPECT_GT(parsed, 2000);
}

// The sanitizers' stack is gone long before 100,000 calls.
TEST(XmlLimits, RefuseDeepAndCrowdedDocumentsBeforeTheyAreRead) {
    const size_t nodes = limits::kXmlNodes.value;
    EXPECT_FALSE(ParseXml(Repeated("<a><!-- </a></a> --><b c='</a>'>", 100000)));
    EXPECT_TRUE(ParseXml("<a>" + Repeated("<b/>", nodes - 2) + "</a>"));
    EXPECT_FALSE(ParseXml("<a>" + Repeated("<b/>", nodes - 1) + "</a>"));
    EXPECT_TRUE(ParseXml("<a " + Repeated("b='' ", nodes - 1) + "/>"));
    EXPECT_FALSE(ParseXml("<a " + Repeated("b='' ", nodes) + "/>"));
}

}  // namespace
