// What is looked up in a network's file, which is in ONNX form: a message of protocol buffers, whose fields have the
// numbers of onnx.proto (ModelProto.graph 7, GraphProto.node 1, NodeProto.input 1 and op_type 4).
#pragma once

#include <optional>
#include <span>
#include <string>

namespace voxmate::speech
{

/// The name of what the only node of this kind in the network works on; nothing when there is none or more than one
/// such node, or the bytes are no such file. A name of more than 200 bytes is none.
std::optional<std::string> InputOfOnly(std::span<const char> model, const std::string& kind);

/// The bytes that make the value called `name` an output of the network when they are put behind its file: a second
/// graph, which by the rules of protocol buffers is merged with the first.
std::string AsOutput(const std::string& name);

} // namespace voxmate::speech
