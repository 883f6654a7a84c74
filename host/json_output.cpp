#include "host/json_output.h"

#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "host/node_words.h"
#include "host/system.h"
#include "host/thumbnail.h"

namespace velmarhost {
namespace {

using Json = nlohmann::ordered_json;

// On a terminal every character beyond ASCII is spelled out, as some of them would drive the terminal.
std::string JsonText(const Json &value, int indent) {
    return value.dump(indent, ' ', IsTerminal(Stream::kOutput), Json::error_handler_t::replace);
}

Json EntryObject(const LibrarySession &session, const WalkEntry &entry) {
    Json object = {{"path", entry.path},
                   {"name", entry.name},
                   {"depth", entry.depth},
                   {"reachable", entry.reach == Reach::kReached}};
    if (entry.reach != Reach::kReached) {
        object["problem"] = ReachWords(entry.reach);
        return object;
    }
    const Node &node = *entry.node;
    object["type"] = TypeWord(node);
    object["kind"] = node.kind();
    object["category"] = node.category();
    object["subcategory"] = node.subcategory();
    object["has_thumbnail"] = HasThumbnail(node);
    Json &attributes = object["attributes"] = Json::object();
    for (const auto &[key, value] : session.Attributes(node))
        attributes.emplace(key, value);
    return object;
}

Json TextOrNull(const std::string &text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

Json ReceiptObject(const AddReceipt &receipt) {
    Json object = {{"source", receipt.source},
                   {"result", ResultWord(receipt.result)},
                   {"name", TextOrNull(receipt.name)},
                   {"path", TextOrNull(receipt.path)},
                   {"location", TextOrNull(receipt.location)},
                   {"bytes", receipt.bytes}};
    if (!receipt.problem.empty()) object["problem"] = receipt.problem;
    return object;
}

}  // namespace

void JsonEntries::Add(const WalkEntry &entry) {
    output_.Raw(empty_ ? "[\n" : ",\n");
    output_.Raw(JsonText(EntryObject(session_, entry), -1));
    empty_ = false;
}

void JsonEntries::End() {
    output_.Raw(empty_ ? "[]\n" : "\n]\n");
}

void WriteJsonReceipts(const std::vector<AddReceipt> &receipts, Output &output) {
    output.Raw("[");
    std::string_view separator = "\n";
    for (const AddReceipt &receipt : receipts) {
        output.Raw(std::exchange(separator, ",\n"));
        output.Raw(JsonText(ReceiptObject(receipt), -1));
    }
    output.Raw(receipts.empty() ? "]\n" : "\n]\n");
}

void WriteJsonNode(const LibrarySession &session, const WalkEntry &entry, Output &output) {
    Json object = EntryObject(session, entry);
    Json &children = object["children"] = Json::array();
    for (std::size_t i = 0; i < entry.node->ChildCount(); ++i)
        children.push_back(entry.node->ChildName(i));
    output.Raw(JsonText(object, 2) + "\n");
}

}  // namespace velmarhost
