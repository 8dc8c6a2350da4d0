// What a message is: constant data beside its record's schema.
#pragma once

#include <string_view>

#include "wire/fixed_layout.hpp"
#include "wire/schema.hpp"

namespace mesh::msg {

// How the send operations encode. __pack always writes the compact arrangement.
enum class Arrangement : uint8_t {
  Compact,
  Fixed,
};

// Who verifies and decodes the root table: the message itself, which touches the record only once
// the frame has been found good, or the record's table reader, which is given a cleared record.
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

// The message whose code serves a record type: its own, or that of another one of the same layout.
template <typename RecordType>
struct LayoutOwner {
  using Type = RecordType;
};

namespace detail {

// An owner may have one itself.
template <typename RecordType, typename Owner = typename LayoutOwner<RecordType>::Type>
struct LastOwner : LastOwner<Owner> {};

template <typename RecordType>
struct LastOwner<RecordType, RecordType> {
  static constexpr const Message& message = messageOf<RecordType>;
};

}  // namespace detail

template <typename RecordType>
inline constexpr const Message& layoutOwnerOf = detail::LastOwner<RecordType>::message;

// Whether code made for one message does the same for another: what its names tell apart comes to
// it as arguments. The release of out-of-line parts is made for one message alone.
constexpr bool haveSameLayout(const Message& one, const Message& other) {
  return one.policy == other.policy && wire::haveSameLayout(*one.schema, *other.schema) &&
         !wire::ownsMemory(*one.schema);
}

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

// Says that the code of `owner_type`'s message serves this record's too.
#define MESH_SAME_LAYOUT(record_type, owner_type)                                    \
  template <>                                                                        \
  struct mesh::msg::LayoutOwner<::record_type> {                                     \
    using Type = ::owner_type;                                                       \
    static_assert(haveSameLayout(messageOf<::record_type>, messageOf<::owner_type>), \
                  "the layouts differ");                                             \
  };
