#include "speech/engines/OnnxGraph.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace voxmate::speech
{

namespace
{

constexpr std::uint64_t GraphOfModel = 7;
constexpr std::uint64_t NodeOfGraph = 1;
constexpr std::uint64_t OutputOfGraph = 12;
constexpr std::uint64_t InputOfNode = 1;
constexpr std::uint64_t KindOfNode = 4;
constexpr std::uint64_t NameOfValue = 1;
constexpr std::size_t LongestName = 200;

/// Reads a message field by field.
class Fields
{
public:
    explicit Fields(std::string_view message) : rest_(message) {}

    /// Goes on to the next field. False at the end and at a field that is damaged; Damaged tells which.
    bool Next()
    {
        if (rest_.empty() || damaged_)
            return false;
        const std::uint64_t key = Number();
        number_ = key >> 3U;
        bytes_ = {};
        switch (key & 7U) {
        case 0:
            Number();
            break;
        case 1:
            Skip(8);
            break;
        case 2:
            bytes_ = Skip(Number());
            break;
        case 5:
            Skip(4);
            break;
        default:
            damaged_ = true;
        }
        return !damaged_;
    }
    bool Damaged() const { return damaged_; }
    std::uint64_t FieldNumber() const { return number_; }
    /// What a field of bytes, a text or a message within holds; empty for others.
    std::string_view Bytes() const { return bytes_; }

private:
    std::uint64_t Number()
    {
        std::uint64_t number = 0;
        for (unsigned shift = 0; shift < 64 && !rest_.empty(); shift += 7) {
            const auto byte = static_cast<unsigned char>(rest_.front());
            rest_.remove_prefix(1);
            number |= static_cast<std::uint64_t>(byte & 0x7FU) << shift;
            if (!(byte & 0x80U))
                return number;
        }
        damaged_ = true;
        return 0;
    }

    std::string_view Skip(std::uint64_t count)
    {
        if (damaged_ || count > rest_.size()) {
            damaged_ = true;
            return {};
        }
        const std::string_view skipped = rest_.substr(0, static_cast<std::size_t>(count));
        rest_.remove_prefix(skipped.size());
        return skipped;
    }

    std::string_view rest_;
    std::uint64_t number_ = 0;
    std::string_view bytes_;
    bool damaged_ = false;
};

void AppendNumber(std::string& out, std::uint64_t number)
{
    for (; number >= 0x80U; number >>= 7U)
        out += static_cast<char>(number | 0x80U);
    out += static_cast<char>(number);
}

std::string Field(std::uint64_t number, const std::string& bytes)
{
    std::string field;
    AppendNumber(field, number << 3U | 2U);
    AppendNumber(field, bytes.size());
    return field + bytes;
}

} // namespace

std::optional<std::string> InputOfOnly(std::span<const char> model, const std::string& kind)
{
    std::optional<std::string> result;
    Fields top({model.data(), model.size()});
    while (top.Next()) {
        if (top.FieldNumber() != GraphOfModel)
            continue;
        Fields graph(top.Bytes());
        while (graph.Next()) {
            if (graph.FieldNumber() != NodeOfGraph)
                continue;
            std::string_view input;
            bool isKind = false;
            Fields node(graph.Bytes());
            while (node.Next()) {
                if (node.FieldNumber() == InputOfNode && input.empty())
                    input = node.Bytes();
                else if (node.FieldNumber() == KindOfNode)
                    isKind = node.Bytes() == kind;
            }
            if (node.Damaged() || (isKind && result))
                return std::nullopt;
            if (isKind)
                result = std::string(input);
        }
        if (graph.Damaged())
            return std::nullopt;
    }
    if (top.Damaged() || !result || result->empty() || result->size() > LongestName)
        return std::nullopt;
    return result;
}

std::string AsOutput(const std::string& name)
{
    return Field(GraphOfModel, Field(OutputOfGraph, Field(NameOfValue, name)));
}

} // namespace voxmate::speech
