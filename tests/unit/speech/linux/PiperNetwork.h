// Small networks in ONNX form, made for tests: with the inputs and outputs of a neural voice, but sums for sound.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace voxmate::speech::network
{

inline std::string Number(std::uint64_t number)
{
    std::string bytes;
    for (; number >= 0x80U; number >>= 7U)
        bytes += static_cast<char>(number | 0x80U);
    return bytes + static_cast<char>(number);
}

/// A field of bytes: its number, its length and the bytes.
inline std::string Field(std::uint64_t number, const std::string& bytes)
{
    return Number(number << 3U | 2U) + Number(bytes.size()) + bytes;
}

/// A field of a number.
inline std::string Whole(std::uint64_t number, std::uint64_t value)
{
    return Number(number << 3U) + Number(value);
}

/// A node of a graph, of which the inputs and outputs are told by name. `attributes` are fields already.
inline std::string Node(const std::string& kind, const std::string& name, const std::vector<std::string>& inputs,
                        const std::vector<std::string>& outputs, const std::string& attributes = {})
{
    std::string node;
    for (const std::string& input : inputs)
        node += Field(1, input);
    for (const std::string& output : outputs)
        node += Field(2, output);
    return Field(1, node + Field(3, name) + Field(4, kind) + attributes);
}

inline std::string Attribute(const std::string& name, std::uint64_t value)
{
    return Field(5, Field(1, name) + Whole(3, value) + Whole(20, 2));
}

inline std::string Attribute(const std::string& name, const std::vector<std::uint64_t>& values)
{
    std::string field = Field(1, name);
    for (const std::uint64_t value : values)
        field += Whole(8, value);
    return Field(5, field + Whole(20, 7));
}

template <class Value>
std::string Weights(const std::string& name, const std::vector<std::uint64_t>& shape, const std::vector<Value>& values)
{
    std::string tensor;
    for (const std::uint64_t size : shape)
        tensor += Whole(1, size);
    std::string bytes(values.size() * sizeof(Value), '\0');
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return Field(5, tensor + Whole(2, sizeof(Value) == 8 ? 7 : 1) + Field(8, name) + Field(9, bytes));
}

/// An input (11) or output (12) of a graph; `type` is 1 for float and 7 for whole numbers of 64 bits.
inline std::string Value(std::uint64_t field, const std::string& name, std::uint64_t type, std::size_t dimensions)
{
    std::string shape;
    for (std::size_t i = 0; i < dimensions; ++i)
        shape += Field(1, Field(2, name + std::to_string(i)));
    return Field(field, Field(1, name) + Field(2, Field(1, Whole(1, type) + Field(2, shape))));
}

/// How many steps of the network a number is heard for, and samples a step.
constexpr std::size_t Steps = 50;
constexpr std::size_t SamplesPerStep = 4;

/// A voice's network. The names of the nodes of its last part begin with `last`; each number is heard for Steps steps,
/// and tells that it is as long as its own value times the length asked for. With `speakers`, the speaker's number is
/// heard as well.
inline std::string Voice(const std::string& last, bool speakers)
{
    std::vector<float> in;
    std::vector<float> out;
    for (int i = 0; i < 4 * 3; ++i)
        in.push_back(0.01F * static_cast<float>(i * 7 % 12 - 5));
    for (int i = 0; i < 4 * 8; ++i)
        out.push_back(0.02F * static_cast<float>(i * 11 % 32 - 15));
    const std::vector<std::int64_t> column{1, -1, 1};
    const std::vector<std::int64_t> expanded{1, 1, static_cast<std::int64_t>(Steps)};
    const std::vector<std::int64_t> row{1, 1, -1};
    std::string graph =
        Node("Cast", "/enc/Cast", {"input"}, {"plain"}, Attribute("to", 1)) +
        Node("Gather", "/enc/Gather", {"scales", "second"}, {"length"}) +
        Node("Mul", "/dp/Mul", {"plain", "length"}, {"long"}) + Node("Ceil", "/Ceil", {"long"}, {"steps"}) +
        Node("ReduceSum", "/Sum", {"steps"}, {"all"}) + Node("Mul", "/Zero", {"all", "nothing"}, {"none"}) +
        Node("Cast", "/len/Cast", {"input_lengths"}, {"count"}, Attribute("to", 1)) +
        Node("Mul", "/len/Mul", {"count", "nothing"}, {"nought"}) + Node("Add", "/Add", {"plain", "none"}, {"sum"}) +
        Node("Add", "/len/Add", {"sum", "nought"}, {"value"}) +
        Node("Reshape", "/Column", {"value", "column"}, {"upright"}) +
        Node("Expand", "/Expand", {"upright", "expanded"}, {"wide"}) + Node("Reshape", "/Row", {"wide", "row"}, {"z"}) +
        Node("Conv", last + "conv_pre/Conv", {"z", "in"}, {"channels"},
             Attribute("pads", std::vector<std::uint64_t>{1, 1}));
    std::string entered = "channels";
    if (speakers) {
        graph += Node("Cast", "/emb/Cast", {"sid"}, {"who"}, Attribute("to", 1)) +
                 Node("Reshape", "/emb/Reshape", {"who", "row"}, {"speaker"}) +
                 Node("Add", last + "cond/Add", {"channels", "speaker"}, {"spoken"});
        entered = "spoken";
    }
    graph += Node("ConvTranspose", last + "ups/ConvTranspose", {entered, "out"}, {"wave"},
                  Attribute("strides", std::vector<std::uint64_t>{SamplesPerStep}) +
                      Attribute("pads", std::vector<std::uint64_t>{2, 2})) +
             Node("Tanh", last + "Tanh", {"wave"}, {"output"}) + Field(2, "voice") + Weights("in", {4, 1, 3}, in) +
             Weights("out", {4, 1, 8}, out) + Weights<std::int64_t>("second", {1}, {1}) +
             Weights<std::int64_t>("column", {3}, column) + Weights<std::int64_t>("expanded", {3}, expanded) +
             Weights<std::int64_t>("row", {3}, row) + Weights<float>("nothing", {1}, {0}) + Value(11, "input", 7, 2) +
             Value(11, "input_lengths", 7, 1) + Value(11, "scales", 1, 1);
    if (speakers)
        graph += Value(11, "sid", 7, 1);
    graph += Value(12, "output", 1, 3);
    return Whole(1, 7) + Field(8, Field(1, "") + Whole(2, 13)) + Field(7, graph);
}

} // namespace voxmate::speech::network
