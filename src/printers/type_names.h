#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "values/value.h"

namespace velk {

/// What a type is called in the interface definition, and in the languages of most hosts.
struct TypeNames {
  Type type;
  std::string_view definition;
  std::string_view host;
};

constexpr std::array typeNames{
    TypeNames{Type::none, "void", "nothing"},       TypeNames{Type::boolean, "VARIANT_BOOL", "Boolean"},
    TypeNames{Type::byte, "unsigned char", "Byte"}, TypeNames{Type::integer, "short", "Integer"},
    TypeNames{Type::text, "BSTR", "String"},        TypeNames{Type::variant, "VARIANT", "Variant"},
};

constexpr const TypeNames& namesOf(Type type) {
  return *std::find_if(typeNames.begin(), typeNames.end(),
                       [=](const TypeNames& row) { return row.type == type; });
}

}  // namespace velk
