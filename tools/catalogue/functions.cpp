// The headers with the functions of the services, l2vpn_*_functions.h. They have every name in
// full, so that grep and editors find it, with the facts of its message.

#include <algorithm>
#include <iostream>

#include "catalogue.hpp"
#include "wire/fixed_image.hpp"

namespace catalogue {

using namespace inspect;

namespace {

using mesh::msg::Arrangement;
using mesh::msg::Message;
using mesh::wire::Schema;

constexpr size_t lineLength = 100;

// Wraps a comment.
void writeComment(const std::string& text) {
  std::string line = "/**";
  size_t at = 0;
  while (at < text.size()) {
    const size_t end = std::min(text.find(' ', at), text.size());
    if (line.size() + 1 + (end - at) > lineLength - 3) {
      std::cout << line << '\n';
      line = " * ";
    }
    line.append(" ").append(text, at, end - at);
    at = end + 1;
  }
  std::cout << line << " */\n";
}

// Writes the declaration of a function. Wraps long parameter lists.
void writeDeclaration(const std::string& start, const std::vector<std::string>& parameters) {
  std::string line = start + '(';
  const size_t indent = line.size();
  for (const std::string& parameter : parameters) {
    const bool isLast = &parameter == &parameters.back();
    const std::string piece = parameter + (isLast ? ");" : ",");
    if (line.size() > indent && line.size() + 1 + piece.size() > lineLength) {
      std::cout << line << '\n';
      line.assign(indent, ' ');
    } else if (line.size() > indent) {
      line += ' ';
    }
    line += piece;
  }
  std::cout << line << "\n\n";
}

std::string sentText(const Message& message) {
  if (message.policy.arrangement == Arrangement::Compact) {
    return "in the compact arrangement";
  }
  return "in the fixed arrangement, " + std::to_string(mesh::wire::fixedLength(*message.schema)) +
         " bytes";
}

void writeReceiving(const Schema& schema) {
  const std::string name = schema.name;
  const std::string size = std::to_string(schema.size);
  const bool owns = mesh::wire::ownsMemory(schema);
  writeComment("Verifies `length` bytes at `data` as a message " + name +
               " and fills *record, which the caller hands in zeroed. " +
               (owns ? "What it allocates goes back through " + name + "_free__unpacked. " : "") +
               "Returns " + size + ", the record's size, accepted or not.");
  writeDeclaration("MESH_L2VPN_API uint32_t " + name + "__unpack",
                   {"const uint8_t* data", "uint32_t length", name + "* record"});
  writeComment(owns ? "Gives back what unpacking allocated inside *record, never *record itself, "
                      "and sets those pointers to null."
                    : "Does nothing: this record owns no memory. It is what the middleware calls.");
  writeDeclaration("MESH_L2VPN_API void " + name + "_free__unpacked", {name + "* record"});
}

void writeSending(const Message& message) {
  const Schema& schema = *message.schema;
  const std::string name = schema.name;
  const std::string batch = "const " + name + "* records";
  writeComment(
      "Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and "
      "the message's size on success: " +
      compactText(schema) + " bytes. Returns 0, or 0xFFFFFFFF with nothing changed.");
  writeDeclaration("MESH_L2VPN_API uint32_t " + name + "__pack",
                   {"const " + name + "* record", "uint8_t* buffer", "uint32_t* length"});
  writeComment("Sends *record " + sentText(message) +
               ". `extra` travels along where it is not 0; `unused` is not read. Returns the "
               "middleware's result, or 0xFFFFFFFF.");
  writeDeclaration(
      "MESH_L2VPN_API uint32_t " + name + "__sendsingle",
      {"uint32_t destination", "const " + name + "* record", "uint64_t unused", "uint64_t extra"});
  writeComment("Sends `count` contiguous records in one call of the middleware: all or none.");
  writeDeclaration("MESH_L2VPN_API uint32_t " + name + "__sendbatch",
                   {"uint32_t destination", batch, "uint32_t count", "uint64_t extra"});
  writeComment("Sends `count` contiguous records, at least one, without `extra`.");
  writeDeclaration("MESH_L2VPN_API uint32_t " + name + "__sendmsg",
                   {"uint32_t destination", batch, "uint32_t count"});
  writeComment("Sends `count` contiguous records, at least one, with `extra`.");
  writeDeclaration("MESH_L2VPN_API uint32_t " + name + "__sendtomsg",
                   {"uint32_t destination", batch, "uint32_t count", "uint64_t extra"});
}

void writeMessage(const Message& message) {
  const std::string name = message.schema->name;
  writeComment("Identifier of the message " + name + ". Its fingerprint is " +
               hex(fingerprint(message)) + ".");
  std::cout << "static const uint32_t " << name << "__msg_id = " << hex(message.id) << ";\n\n";
  writeReceiving(*message.schema);
  writeSending(message);
}

void writeOfService(const std::string& name) {
  writeComment(
      "Registers the service's messages with the middleware, for receiving. Returns 0, or "
      "the middleware's first result that is not 0; what was registered before it stays.");
  writeDeclaration("MESH_L2VPN_API uint32_t " + name + "_recv_init", {"void"});
  writeComment("Registers " + name +
               "__send_resource_clean with the middleware, for sending. "
               "Returns the middleware's result.");
  writeDeclaration("MESH_L2VPN_API uint32_t " + name + "_send_init", {"void"});
  writeComment(
      "Called by the middleware. Sending keeps nothing between calls, so it does nothing.");
  writeDeclaration("MESH_L2VPN_API void " + name + "__send_resource_clean", {"void"});
}

}  // namespace

void writeFunctions(const Service& service) {
  std::string guard = "MESH_L2VPN_" + service.name + "_FUNCTIONS_H";
  std::ranges::transform(guard, guard.begin(), [](char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  });
  std::cout << "/** @file\n * The functions and identifiers of the service " << service.name
            << ", each under its full name. Included by\n * mesh_l2vpn/" << service.name
            << ".h; what all have in common stands in mesh_l2vpn/operations.h.\n *\n"
               " * Written by mesh-l2vpn-catalogue from the schemas; do not edit. */\n"
               "/* clang-format off */\n"
            << "#ifndef " << guard << "\n#define " << guard << "\n\n#include \"mesh_l2vpn/"
            << service.name << ".h\"\n\nMESH_L2VPN_BEGIN\n\n";
  writeOfService(service.name);
  for (const Message* const message : service.messages) {
    writeMessage(*message);
  }
  std::cout << "MESH_L2VPN_END\n\n#endif\n";
}

}  // namespace catalogue
