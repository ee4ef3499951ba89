// Prints the interface definition that the type library is compiled from. A tool of the build: it runs on the
// machine that builds and takes everything from the method table.

#include <iostream>
#include <string>

#include "component/identity.h"
#include "component/method_table.h"
#include "printers/type_names.h"

namespace {

using velk::Kind;
using velk::Method;
using velk::Parameter;
using velk::Type;

constexpr auto table = velk::methodTable<velk::Described>();

/// The types that the system's own definition files would bring, which are not at hand in every build.
constexpr std::string_view prologue = R"(typedef wchar_t OLECHAR;
typedef [wire_marshal(long)] OLECHAR* BSTR;
typedef short VARIANT_BOOL;
typedef struct tagVARIANT { long vt; } VARIANT;
[object, uuid(00000000-0000-0000-C000-000000000046)] interface IUnknown {}
[object, uuid(00020400-0000-0000-C000-000000000046)] interface IDispatch : IUnknown {}

)";

std::string typeName(Type type) {
  return std::string(velk::namesOf(type).definition);
}

std::string quoted(std::string_view text) {
  return '"' + std::string(text) + '"';
}

/// The compiler takes no text as the default of a reference.
std::string fallback(const Parameter& parameter) {
  if (parameter.type != Type::text) return ", defaultvalue(" + std::to_string(parameter.fallback) + ")";
  return parameter.inOut ? "" : R"(, defaultvalue(""))";
}

std::string declaration(const Parameter& parameter) {
  return (parameter.inOut ? "[in, out" : "[in") +
         (parameter.optional ? ", optional" + fallback(parameter) : "") + "] " + typeName(parameter.type) +
         (parameter.inOut ? "* " : " ") + std::string(parameter.name);
}

std::string declarations(const Method& method) {
  std::string list;
  for (const Parameter& parameter : method.parameters()) {
    list += (list.empty() ? "" : ", ") + declaration(parameter);
  }
  return list;
}

/// One line of the interface. Properties are accessor methods, because fields can have no help text.
std::string line(const Method& method, std::string_view attribute, const std::string& result,
                 const std::string& arguments) {
  return "      [id(" + std::to_string(method.id) + ")" + std::string(attribute) + ", helpstring(" +
         quoted(method.help) + ")] " + result + " " + std::string(method.name) + "(" + arguments + ");\n";
}

std::string lines(const Method& method) {
  const std::string type = typeName(method.result);
  if (method.kind == Kind::method) return line(method, "", type, declarations(method));
  return line(method, ", propget", type, "") + line(method, ", propput", "void", "[in] " + type + " value");
}

std::string head(std::string_view id, std::string_view more, std::string_view help) {
  return "[uuid(" + std::string(id) + ")" + std::string(more) + ", helpstring(" + quoted(help) + ")]\n";
}

}  // namespace

int main() {
  namespace identity = velk::identity;
  const std::string version = ", version(" + std::string(identity::libraryVersion) + ")";
  std::cout << prologue << head(identity::libraryId, version, identity::libraryHelp) << "library "
            << identity::library << " {\n"
            << head(identity::interfaceId, "", identity::classHelp) << "  dispinterface "
            << identity::interfaceName << " {\n    properties:\n    methods:\n";
  for (const Method& method : table) std::cout << lines(method);
  std::cout << "  };\n"
            << head(identity::classId, "", identity::classHelp) << "  coclass " << identity::className
            << " { [default] dispinterface " << identity::interfaceName << "; };\n};\n";
}
