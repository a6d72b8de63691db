// ZIP archives in which documents and books are kept.
#pragma once

#include "readers/markup/Xml.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace voxmate::readers
{

/// The parts of a document by their names. What a reader of packages needs, so that tests and fuzzers can stand in.
class Parts
{
public:
    virtual ~Parts() = default;
    virtual bool Has(const std::string& name) const = 0;
    /// The bytes of a part, unpacked as they are read. Nothing when there is no such part. Raises Refused: damaged,
    /// protected, or too large when the parts read so far are, unpacked, larger than LargestContent.
    virtual std::optional<ByteSource> Open(const std::string& name) const = 0;

    /// A whole part; raises Refused, also when it is missing or larger than `most`.
    std::string Whole(const std::string& name, std::size_t most = std::size_t{64} << 20) const;
};

/// The most that all parts read may be together when they are unpacked.
inline constexpr std::size_t LargestContent = std::size_t{512} << 20;

/// An archive in memory, which outlives it. Raises Refused when it is damaged.
std::unique_ptr<Parts> OpenPackage(std::string_view bytes);

/// The name of the part to which a reference leads from another part: "text/a b.xhtml" for "a%20b.xhtml#c" in
/// "text/x.xhtml". A reference that begins with a slash starts at the top.
std::string PartName(std::string_view from, std::string_view reference);

} // namespace voxmate::readers
