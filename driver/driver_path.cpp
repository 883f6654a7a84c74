#include "driver/driver_path.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "driver/library_driver.h"
#include "driver/path_lookup.h"

namespace {

// Below this number a walk over the names is as fast as an index.
constexpr int32_t kFewChildren = 16;

// Positions of the three fixed children of the root.
constexpr int32_t kLibraryPosition = 0;
constexpr int32_t kGeniusPosition = 1;
constexpr int32_t kPlaylistPosition = 2;

void FreeName(char *name) {
    if (name != nullptr) ReturnToPool(name, std::strlen(name) + 1);
}

// Names come from the pool, like the nodes: a library has more of them than of anything else.
void AppendName(DriverPath *path, std::string_view name) {
    auto *copy = static_cast<char *>(TakeFromPool(name.size() + 1));
    if (copy == nullptr) throw std::bad_alloc();
    name.copy(copy, name.size());
    copy[name.size()] = '\0';
    try {
        AppendItem(path->names, copy);
    } catch (const std::bad_alloc &) {
        FreeName(copy);
        throw;
    }
}

bool HasName(const DriverPath *path, int32_t index, std::string_view name) {
    const char *text = ChildNameAt(path, index);
    return text != nullptr && text == name;
}

void FreeNames(VelmarArray *names) {
    for (int32_t i = GetVelmarArraySize(names) - 1; i >= 0; --i) {
        void *name = nullptr;
        GetVelmarArrayItem(names, i, &name);
        FreeName(static_cast<char *>(name));
    }
    FreeVelmarArray(names);
}

// Frees everything that belongs to one node alone. A host library need not take null.
void FreeNode(DriverPath *path) {
    if (path->names != nullptr) FreeNames(path->names);
    if (path->attributes != nullptr) FreeVelmarAttribute(path->attributes);
    if (path->children != nullptr) FreeVelmarArray(path->children);
    std::free(path->open_path);
    delete path;
}

DriverPath *RootChild(const LibraryDriver *driver, int32_t position) {
    return driver == nullptr || driver->root == nullptr ? nullptr : ChildAt(driver->root, position);
}

bool HangsInTree(const DriverPath *path) {
    return path->parent != nullptr || path == path->owner->root;
}

bool IsAncestor(const DriverPath *ancestor, const DriverPath *path) {
    while (path != nullptr && path != ancestor)
        path = path->parent;
    return path != nullptr;
}

void LinkToParent(DriverPath *parent, DriverPath *child) {
    const bool first_holder = child->parent == nullptr;
    // The new place is the last one under its parent, so it comes behind everything that the parent holds
    // already.
    if (!first_holder && (!ComesBefore(parent, child) || IsAncestor(parent, child))) return;
    child->parent = parent;
    child->sequence = child->owner->next_sequence++;
    NoteAppendedChild(parent, child, !first_holder);
}

void Hang(DriverPath *parent, const char *name, DriverPath *child) {
    DriverPath *const first_parent = child->parent;
    const int32_t position = ChildCount(parent);
    AppendItem(parent->children, child);
    try {
        if (name != nullptr) {
            AppendName(parent, name);
            if (parent->child_index) parent->child_index->Add(*parent, GetVelmarArraySize(parent->names) - 1);
        }
        if (HangsInTree(parent)) LinkToParent(parent, child);
    } catch (const std::bad_alloc &) {
        DetachChild(parent, position).release()->parent = first_parent;
        throw;
    }
}

// A host may still read the names and attributes of a node that it has open; its children go at once.
void DropNode(DriverPath *path) {
    if (path->open_count == 0) {
        FreeNode(path);
        return;
    }
    path->parent = nullptr;
    path->dropped = true;
    path->owner->dropped_paths.insert(path);
}

// The node, if it is to be released with its holder; null for one that other lists hold too, which loses one.
DriverPath *GiveUp(DriverPath *node, DriverPath *holder) {
    if (node == nullptr) return nullptr;
    if (node->share_count >= 2) {
        --node->share_count;
        return nullptr;
    }
    node->parent = holder;
    return node;
}

// Hands every node of a subtree to `release`, behind those below it. Without recursion, as lists may be
// nested, and without memory, which may be what has run out: the way back is the parent.
void ReleaseSubtree(DriverPath *path, void (*release)(DriverPath *)) {
    DriverPath *node = GiveUp(path, nullptr);
    while (node != nullptr) {
        const int32_t last = ChildCount(node) - 1;
        if (last < 0) {
            DriverPath *holder = node->parent;
            release(node);
            node = holder;
            continue;
        }
        PrefetchPath(ChildAt(node, last - kPrefetchedPlaces));
        DriverPath *child = GiveUp(ChildAt(node, last), node);
        DeleteVelmarArrayItem(node->children, last);
        if (child != nullptr) node = child;
    }
}

// The distance to the top of the tree.
int32_t DepthOf(const DriverPath *path) {
    int32_t depth = 0;
    while ((path = path->parent) != nullptr)
        ++depth;
    return depth;
}

}  // namespace

void AppendItem(VelmarArray *array, void *item) {
    const int32_t count = GetVelmarArraySize(array);
    AddVelmarArrayItem(array, item);
    if (GetVelmarArraySize(array) == count) throw std::bad_alloc();
}

void ReleasePath::operator()(DriverPath *path) const {
    ReleaseDriverPath(path);
}

LoosePath CreateDriverPath(LibraryDriver *driver, int32_t kind, int32_t category, int32_t subcategory) {
    LoosePath path(new DriverPath);
    if (path == nullptr) throw std::bad_alloc();
    path->owner = driver;
    path->kind = kind;
    path->category = category;
    path->subcategory = subcategory;
    AllocVelmarArray(&path->children);
    AllocVelmarArray(&path->names);
    AllocVelmarAttribute(&path->attributes);
    if (path->children == nullptr || path->names == nullptr || path->attributes == nullptr) {
        FreeNode(path.release());
        throw std::bad_alloc();
    }
    return path;
}

DriverPath *AppendChild(DriverPath *parent, const char *name, LoosePath child) {
    Hang(parent, name, child.get());
    return child.release();
}

void AppendTrack(DriverPath *list, const char *name, DriverPath *track) {
    Hang(list, name, track);
}

int32_t ChildCount(const DriverPath *path) {
    return GetVelmarArraySize(path->children);
}

DriverPath *ChildAt(const DriverPath *path, int32_t index) {
    void *child = nullptr;
    if (GetVelmarArrayItem(path->children, index, &child) != 0) return nullptr;
    return static_cast<DriverPath *>(child);
}

const char *ChildNameAt(const DriverPath *path, int32_t index) {
    void *name = nullptr;
    if (GetVelmarArrayItem(path->names, index, &name) != 0) return nullptr;
    return static_cast<const char *>(name);
}

void IndexChildNames(DriverPath *path) {
    if (path->child_index || GetVelmarArraySize(path->names) < kFewChildren) return;
    path->child_index = std::make_unique<ChildIndex>(*path);
}

DriverPath *FindChild(DriverPath *path, std::string_view name) {
    IndexChildNames(path);
    if (path->child_index) return path->child_index->Find(*path, name);
    const int32_t count = GetVelmarArraySize(path->names);
    for (int32_t i = 0; i < count; ++i) {
        if (HasName(path, i, name)) return ChildAt(path, i);
    }
    return nullptr;
}

void ReleaseDriverPath(DriverPath *path) {
    ReleaseSubtree(path, FreeNode);
}

LoosePath DetachChild(DriverPath *parent, int32_t index) {
    LoosePath child(ChildAt(parent, index));
    FreeName(const_cast<char *>(ChildNameAt(parent, index)));
    DeleteVelmarArrayItem(parent->names, index);
    DeleteVelmarArrayItem(parent->children, index);
    parent->child_index.reset();
    NoteDroppedChild(parent);
    if (child != nullptr) child->parent = nullptr;
    return child;
}

void DropChild(DriverPath *parent, int32_t index) {
    ReleaseSubtree(DetachChild(parent, index).release(), DropNode);
}

bool IsOpenBelow(const DriverPath *path) {
    if (path->open_count > 0) return true;
    for (int32_t i = ChildCount(path) - 1; i >= 0; --i) {
        const DriverPath *child = ChildAt(path, i);
        if (child != nullptr && IsOpenBelow(child)) return true;
    }
    return false;
}

void ReleaseDroppedPath(DriverPath *path) {
    path->owner->dropped_paths.erase(path);
    FreeNode(path);
}

bool ComesBefore(const DriverPath *first, const DriverPath *second) {
    int32_t first_depth = DepthOf(first);
    int32_t second_depth = DepthOf(second);
    const bool first_is_higher = first_depth <= second_depth;
    for (; first_depth > second_depth; --first_depth)
        first = first->parent;
    for (; second_depth > first_depth; --second_depth)
        second = second->parent;
    // One is an ancestor of the other: a walk meets a node before its children.
    if (first == second) return first_is_higher;
    while (first->parent != second->parent) {
        first = first->parent;
        second = second->parent;
    }
    return first->sequence < second->sequence;
}

DriverPath *GetLibraryRoot(const LibraryDriver *driver) {
    return RootChild(driver, kLibraryPosition);
}

DriverPath *GetGeniusRoot(const LibraryDriver *driver) {
    return RootChild(driver, kGeniusPosition);
}

DriverPath *GetPlaylistRoot(const LibraryDriver *driver) {
    return RootChild(driver, kPlaylistPosition);
}

DriverPath *CreateCategoryPath(LibraryDriver *driver, const char *name, int32_t kind, int32_t category,
                               int32_t subcategory) {
    DriverPath *library = GetLibraryRoot(driver);
    if (library == nullptr || library->children == nullptr) return nullptr;
    return AppendChild(library, name, CreateDriverPath(driver, kind, category, subcategory));
}
