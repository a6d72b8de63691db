// What is looked up in a network's file, and cut out of it. The file is in ONNX form: a message of protocol buffers,
// whose fields have the numbers of onnx.proto (ModelProto.graph 7; GraphProto.node 1, initializer 5, input 11 and
// output 12; NodeProto.input 1, output 2, name 3, op_type 4 and attribute 5).
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace voxmate::speech
{

/// The name of what the only node of this kind in the network works on; nothing when there is none or more than one
/// such node, or the bytes are no such file. A name of more than 200 bytes is none.
std::optional<std::string> InputOfOnly(std::span<const char> model, const std::string& kind);

/// The bytes that make the value called `name` an output of the network when they are put behind its file: a second
/// graph, which by the rules of protocol buffers is merged with the first.
std::string AsOutput(const std::string& name);

/// A network in two parts that give together what it gives as one.
struct DividedNetwork {
    std::string first;  ///< the file of a network with the whole one's inputs, and these outputs: `between`,
                        ///< and `told` where one was asked for
    std::string second; ///< the file of a network with the inputs `between` and the whole one's outputs
    std::vector<std::string> between; ///< the values that go from one to the other; the first is what `entry` works on
};

/// Divides a network before the nodes whose names begin with `part`; `entry` is the name of the node among them that
/// the values of each moment of time enter by. `told` names a value of the first part that becomes an output of it,
/// too; it may be empty. Nothing when the network cannot be divided there, or the bytes are no such file.
std::optional<DividedNetwork> DivideNetwork(std::span<const char> model, const std::string& part,
                                            const std::string& entry, const std::string& told);

} // namespace voxmate::speech
