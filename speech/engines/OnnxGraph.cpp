#include "speech/engines/OnnxGraph.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace voxmate::speech
{

namespace
{

constexpr std::uint64_t GraphOfModel = 7;
constexpr std::uint64_t NodeOfGraph = 1;
constexpr std::uint64_t WeightsOfGraph = 5;
constexpr std::uint64_t InputOfGraph = 11;
constexpr std::uint64_t OutputOfGraph = 12;
constexpr std::uint64_t ShapeOfGraph = 13;
constexpr std::uint64_t InputOfNode = 1;
constexpr std::uint64_t OutputOfNode = 2;
constexpr std::uint64_t NameOfNode = 3;
constexpr std::uint64_t KindOfNode = 4;
constexpr std::uint64_t AttributeOfNode = 5;
constexpr std::uint64_t GraphOfAttribute = 6;
constexpr std::uint64_t GraphsOfAttribute = 11;
constexpr std::uint64_t NameOfWeights = 8;
constexpr std::uint64_t NameOfValue = 1;
constexpr std::uint64_t TypeOfValue = 2;
constexpr std::uint64_t TensorOfType = 1;
constexpr std::uint64_t ElementsOfTensor = 1;
constexpr char FloatElements = 1;
constexpr std::size_t LongestName = 200;
// The networks of voices have some 3,000 nodes.
constexpr std::size_t MostNodes = 100000;
constexpr std::size_t MostNames = 1000000;

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
        const std::string_view before = rest_;
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
        whole_ = before.substr(0, before.size() - rest_.size());
        return !damaged_;
    }
    bool Damaged() const { return damaged_; }
    std::uint64_t FieldNumber() const { return number_; }
    /// What a field of bytes, a text or a message within holds; empty for others.
    std::string_view Bytes() const { return bytes_; }
    /// The field as it stands in the message, with its number.
    std::string_view Whole() const { return whole_; }

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
    std::string_view whole_;
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

// The first field of this number in a message; empty when there is none.
std::string_view First(std::string_view message, std::uint64_t number)
{
    Fields fields(message);
    while (fields.Next())
        if (fields.FieldNumber() == number)
            return fields.Bytes();
    return {};
}

using Names = std::unordered_set<std::string_view>;

struct Node {
    std::string_view name;
    std::string_view kind;
    std::vector<std::string_view> inputs;
    std::vector<std::string_view> outputs;
};

/// A network as it stands in its file.
class Network
{
public:
    explicit Network(std::string_view model) : model_(model) { ok_ = Read(); }
    /// False when the file is damaged, or larger than any voice's.
    bool Ok() const { return ok_; }
    /// Whether there are graphs within nodes, whose values are not looked at here.
    bool Nested() const { return nested_; }
    const std::vector<Node>& Nodes() const { return nodes_; }
    const Names& Weights() const { return weights_; }
    const Names& Inputs() const { return inputs_; }
    const std::vector<std::string_view>& Outputs() const { return outputs_; }

    /// The nodes, weights and inputs that `wanted` comes from, where `given` is known.
    struct Needed {
        std::vector<bool> nodes;
        Names names;
    };
    Needed For(const Names& wanted, const Names& given) const
    {
        Needed needed{std::vector<bool>(nodes_.size()), wanted};
        // A node stands behind those it takes values from.
        for (std::size_t i = nodes_.size(); i-- > 0;) {
            for (const std::string_view output : nodes_[i].outputs)
                if (needed.names.contains(output) && !given.contains(output))
                    needed.nodes[i] = true;
            if (needed.nodes[i])
                needed.names.insert(nodes_[i].inputs.begin(), nodes_[i].inputs.end());
        }
        return needed;
    }

    /// The file of the network that makes `outputs` of the whole one's inputs, or of `given` where that is not empty.
    std::string Part(const std::vector<std::string_view>& outputs, const std::vector<std::string_view>& given) const
    {
        const Names givenNames(given.begin(), given.end());
        const Needed needed = For(Names(outputs.begin(), outputs.end()), givenNames);
        std::string graph;
        std::string result;
        std::size_t node = 0;
        Fields top(model_);
        while (top.Next()) {
            if (top.FieldNumber() != GraphOfModel) {
                result += top.Whole();
                continue;
            }
            Fields fields(top.Bytes());
            while (fields.Next()) {
                bool keep = true;
                switch (fields.FieldNumber()) {
                case NodeOfGraph:
                    keep = needed.nodes[node++];
                    break;
                case WeightsOfGraph:
                    keep = needed.names.contains(First(fields.Bytes(), NameOfWeights));
                    break;
                case InputOfGraph:
                    keep = given.empty();
                    break;
                case OutputOfGraph:
                case ShapeOfGraph:
                    keep = false;
                    break;
                default:
                    break;
                }
                if (keep)
                    graph += fields.Whole();
            }
        }
        const std::string type = Field(TensorOfType, {static_cast<char>(ElementsOfTensor << 3U), FloatElements});
        for (const std::string_view name : given)
            graph += Field(InputOfGraph, Field(NameOfValue, std::string(name)) + Field(TypeOfValue, type));
        for (const std::string_view name : outputs)
            graph += Field(OutputOfGraph, Field(NameOfValue, std::string(name)));
        return result + Field(GraphOfModel, graph);
    }

private:
    bool Read()
    {
        std::size_t names = 0;
        Fields top(model_);
        while (top.Next()) {
            if (top.FieldNumber() != GraphOfModel)
                continue;
            Fields graph(top.Bytes());
            while (graph.Next()) {
                const std::string_view bytes = graph.Bytes();
                switch (graph.FieldNumber()) {
                case NodeOfGraph:
                    if (nodes_.size() == MostNodes || !ReadNode(bytes, names))
                        return false;
                    break;
                case WeightsOfGraph:
                    weights_.insert(First(bytes, NameOfWeights));
                    ++names;
                    break;
                case InputOfGraph:
                    inputs_.insert(First(bytes, NameOfValue));
                    ++names;
                    break;
                case OutputOfGraph:
                    outputs_.push_back(First(bytes, NameOfValue));
                    ++names;
                    break;
                default:
                    break;
                }
                if (names > MostNames)
                    return false;
            }
            if (graph.Damaged())
                return false;
        }
        return !top.Damaged();
    }

    bool ReadNode(std::string_view message, std::size_t& names)
    {
        Node& node = nodes_.emplace_back();
        Fields fields(message);
        while (fields.Next()) {
            switch (fields.FieldNumber()) {
            case InputOfNode:
                node.inputs.push_back(fields.Bytes());
                ++names;
                break;
            case OutputOfNode:
                node.outputs.push_back(fields.Bytes());
                ++names;
                break;
            case NameOfNode:
                node.name = fields.Bytes();
                break;
            case KindOfNode:
                node.kind = fields.Bytes();
                break;
            case AttributeOfNode:
                if (!First(fields.Bytes(), GraphOfAttribute).empty() ||
                    !First(fields.Bytes(), GraphsOfAttribute).empty())
                    nested_ = true;
                break;
            default:
                break;
            }
        }
        return !fields.Damaged() && names <= MostNames;
    }

    std::string_view model_;
    bool ok_ = false;
    bool nested_ = false;
    std::vector<Node> nodes_;
    Names weights_;
    Names inputs_;
    std::vector<std::string_view> outputs_;
};

} // namespace

std::optional<std::string> InputOfOnly(std::span<const char> model, const std::string& kind)
{
    const Network network({model.data(), model.size()});
    if (!network.Ok())
        return std::nullopt;
    const Node* found = nullptr;
    for (const Node& node : network.Nodes()) {
        if (node.kind != kind)
            continue;
        if (found)
            return std::nullopt;
        found = &node;
    }
    if (!found || found->inputs.empty() || found->inputs[0].empty() || found->inputs[0].size() > LongestName)
        return std::nullopt;
    return std::string(found->inputs[0]);
}

std::string AsOutput(const std::string& name)
{
    return Field(GraphOfModel, Field(OutputOfGraph, Field(NameOfValue, name)));
}

std::optional<DividedNetwork> DivideNetwork(std::span<const char> model, const std::string& part,
                                            const std::string& entry, const std::string& told)
{
    const Network network({model.data(), model.size()});
    if (!network.Ok() || network.Nested())
        return std::nullopt;
    Names within;
    Names constant = network.Weights();
    std::string_view entered;
    for (const Node& node : network.Nodes()) {
        if (node.name.starts_with(part))
            within.insert(node.outputs.begin(), node.outputs.end());
        if (node.name == entry && !node.inputs.empty())
            entered = node.inputs[0];
        if (node.kind == "Constant")
            constant.insert(node.outputs.begin(), node.outputs.end());
    }
    if (entered.empty() || within.contains(entered) || constant.contains(entered))
        return std::nullopt;
    std::vector<std::string_view> between{entered};
    Names known{entered};
    for (const Node& node : network.Nodes())
        if (node.name.starts_with(part))
            for (const std::string_view input : node.inputs)
                if (!input.empty() && !within.contains(input) && !constant.contains(input) &&
                    known.insert(input).second)
                    between.push_back(input);
    // What comes behind the part may take nothing else from before it.
    const Network::Needed second = network.For(Names(network.Outputs().begin(), network.Outputs().end()), known);
    for (const std::string_view input : network.Inputs())
        if (second.names.contains(input))
            return std::nullopt;
    std::vector<std::string_view> outputs = between;
    if (!told.empty() && known.insert(told).second)
        outputs.emplace_back(told);
    const Network::Needed first = network.For(known, {});
    for (std::size_t i = 0; i < network.Nodes().size(); ++i)
        if (first.nodes[i] && network.Nodes()[i].name.starts_with(part))
            return std::nullopt;
    DividedNetwork result;
    result.first = network.Part(outputs, {});
    result.second = network.Part(network.Outputs(), between);
    result.between.assign(between.begin(), between.end());
    return result;
}

} // namespace voxmate::speech
