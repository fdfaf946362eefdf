// Faults of a graph, before and while it runs.
#pragma once

#include <stdexcept>
#include <string>

namespace host {

enum class GraphFault {
    content,      ///< unknown effect or parameter, wrong type, cycle, missing connection
    missingFile,  ///< a graph file, or a file that a parameter names, does not exist
    unreadable,   ///< a graph file cannot be read, or is no JSON
    effectFailed, ///< an effect cannot be made here, refuses a value, or does not run
};

/// An error with one line of text, which names the file, the node and the parameter as far as they are known.
class GraphError : public std::runtime_error {
public:
    GraphError(GraphFault fault, const std::string& message) : std::runtime_error(message), fault_(fault) { }
    GraphFault fault() const { return fault_; }

private:
    GraphFault fault_;
};

/// Runs a piece of the work, and puts the place in front of the text of its errors.
template <class Work> auto within(const std::string& place, Work work)
{
    try {
        return work();
    } catch (const GraphError& error) {
        throw GraphError(error.fault(), place + ": " + error.what());
    }
}

} // namespace host
