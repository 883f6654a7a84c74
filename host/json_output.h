#ifndef HOST_JSON_OUTPUT_H
#define HOST_JSON_OUTPUT_H

#include <string>
#include <vector>

#include "host/add_receipt.h"
#include "host/library_session.h"
#include "host/output.h"
#include "host/tree_walk.h"

namespace velmarhost {

// An array of entries, written one by one, so that a tree of any size needs the memory of one entry. The
// shape is told in the help text of "stat" and does not change.
class JsonEntries {
  public:
    JsonEntries(const LibrarySession &session, Output &output) : session_(session), output_(output) {}
    void Add(const WalkEntry &entry);
    // Closes the array.
    void End();

  private:
    const LibrarySession &session_;
    Output &output_;
    bool empty_ = true;
};

// An array with one object for each receipt. The shape is told in the help text of "add".
void WriteJsonReceipts(const std::vector<AddReceipt> &receipts, Output &output);

// One object, with the names of the children.
void WriteJsonNode(const LibrarySession &session, const WalkEntry &entry, Output &output);

}  // namespace velmarhost

#endif
