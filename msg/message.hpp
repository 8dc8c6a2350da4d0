// What a message is: constant data beside its record's schema.
#pragma once

#include <span>
#include <string_view>

#include "host/binding.hpp"
#include "wire/schema.hpp"

namespace mesh::msg {

// What __pack and the send operations return of their own.
inline constexpr uint32_t success = 0;
inline constexpr uint32_t failure = 0xFFFFFFFF;

// How the send operations encode. __pack always writes the compact arrangement.
enum class Arrangement : uint8_t {
  Compact,
  Fixed,
};

// Who decodes the root table. ByMessage: the message verifies the head, then clears the record.
// ByTableReader: the message clears the record, then the record's table reader verifies the head.
enum class RootDecoding : uint8_t {
  ByMessage,
  ByTableReader,
};

struct Policy {
  Arrangement arrangement;
  RootDecoding rootDecoding;
  // A record whose compact size is above this cannot be encoded.
  uint64_t largestSize = UINT32_MAX;

  bool operator==(const Policy&) const = default;
};

// Whether the identifier is made of the message's name alone or of its service's and its own.
enum class Naming : uint8_t {
  Bare,
  Qualified,
};

struct Service {
  std::string_view name;
  Naming naming;
};

struct Message {
  const wire::Schema* schema;
  uint32_t id;
  Policy policy;
};

// The message of a record type: a specialisation stands beside each record's schema.
template <typename RecordType>
struct MessageOf;

template <typename RecordType>
inline constexpr const Message& messageOf = MessageOf<RecordType>::message;

// Whether one message's code can serve another. Names and identifiers are arguments of that code.
// Records that own memory share no code: the name of their release is compiled in.
constexpr bool haveSameLayout(const Message& one, const Message& other) {
  return &one == &other ||
         (one.policy == other.policy && wire::haveSameLayout(*one.schema, *other.schema) &&
          !wire::ownsMemory(*one.schema));
}

constexpr size_t layoutOwnerIndex(std::span<const Message* const> messages,
                                  const Message& message) {
  size_t index = 0;
  while (!haveSameLayout(*messages[index], message)) {
    ++index;
  }
  return index;
}

// The message whose code serves `message`: the first of its service's that has the same layout.
template <const auto& messages, const Message& message>
inline constexpr const Message& layoutOwnerOf = *messages[layoutOwnerIndex(messages, message)];

// 32-bit FNV-1a, continued from `hash`.
constexpr uint32_t fnv1a(std::string_view text, uint32_t hash = 0x811C9DC5) {
  for (const char character : text) {
    hash = (hash ^ static_cast<uint8_t>(character)) * 0x01000193;
  }
  return hash;
}

// Declared only: a call of it is not a constant expression, and so an error with this name in it.
void aQualifiedMessageNameBeginsWithItsService();

// The identifier that sender and receiver agree on: the hash of "service.message", where `message`
// is the exported name less "service_", or of the bare exported name.
consteval uint32_t identifierOf(const Service& service, std::string_view exportedName) {
  if (service.naming == Naming::Bare) {
    return fnv1a(exportedName);
  }
  if (!exportedName.starts_with(service.name) || exportedName[service.name.size()] != '_') {
    aQualifiedMessageNameBeginsWithItsService();
  }
  return fnv1a(exportedName.substr(service.name.size() + 1), fnv1a(".", fnv1a(service.name)));
}

consteval Message makeMessage(const Service& service, const wire::Schema& schema,
                              const Policy& policy) {
  return {&schema, identifierOf(service, schema.name), policy};
}

}  // namespace mesh::msg

// The message of a record whose schema stands before it.
#define MESH_MESSAGE(service, record_type, message_policy)                         \
  template <>                                                                      \
  struct mesh::msg::MessageOf<::record_type> {                                     \
    static constexpr mesh::msg::Message message =                                  \
        makeMessage(service, mesh::wire::schemaOf<::record_type>, message_policy); \
  };

#define MESH_ADDRESS_OF_MESSAGE(message, identifier) &msg::messageOf<message>,

// A service's two modules, and its messages in registration order, from its list of messages.
#define MESH_SERVICE(service, list)                                                  \
  namespace mesh::service {                                                          \
  extern host::Module receiveModule;                                                 \
  extern host::Module sendModule;                                                    \
  inline constexpr const msg::Message* messages[] = {list(MESH_ADDRESS_OF_MESSAGE)}; \
  }

// Defines a module at the top of its source file. From here on, `module` is the module and
// `messages` its service's messages. Only the constructor runs when the library is loaded.
#define MESH_DEFINE_MODULE(service, module_name)                            \
  constinit mesh::host::Module mesh::service::module_name;                  \
  static constexpr mesh::host::Module& module = mesh::service::module_name; \
  static constexpr const auto& messages = mesh::service::messages;          \
  [[gnu::constructor]] static void clearSwapBytes() {                       \
    module.swapBytes.store(0, std::memory_order_relaxed);                   \
  }

// Template arguments within a module's source file: the module, and the layout owner of a message.
#define MESH_SERVED_BY(message) \
  module, mesh::msg::layoutOwnerOf<messages, mesh::msg::messageOf<message>>
