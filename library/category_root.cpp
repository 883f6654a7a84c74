#include "library/category_root.h"

#include "library/distinguished_kinds.h"

DriverPath *EnsureCategoryRoot(LibraryDriver *driver, int32_t distinguished_kind) {
    const DistinguishedKind &kind = FindDistinguishedKind(distinguished_kind);
    DriverPath *root = FindCategoryRoot(driver, kind.category, kind.subcategory);
    if (root != nullptr) return root;
    return CreateCategoryPath(driver, kind.name, node_kind::kFolder, kind.category, kind.subcategory);
}
