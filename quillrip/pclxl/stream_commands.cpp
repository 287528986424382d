#include "quillrip/base/reporter.h"
#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/user_streams.h"

#include <cstdint>
#include <string>

namespace quillrip::pclxl::commands {

namespace {

std::string streamName(const Machine& machine) { return machine.operands().array(Attribute::StreamName).name(); }

} // namespace

Status beginStream(Machine& machine)
{
    const std::string name = streamName(machine);
    if (name.empty())
        return { Error::IllegalArraySize, Attribute::StreamName };
    machine.userStreams().beginDefinition(name);
    machine.beginDefinition(Definition::Stream);
    return {};
}

Status readStream(Machine& machine)
{
    const double length = machine.operands().number(Attribute::StreamDataLength);
    if (length < 0)
        return { Error::IllegalAttributeValue, Attribute::StreamDataLength };
    return machine.userStreams().append(machine.data(), static_cast<std::uint64_t>(length));
}

Status endStream(Machine& machine)
{
    machine.userStreams().endDefinition();
    machine.endDefinition();
    return {};
}

/// The operators of the stream run as if they stood here: on the same page, with the same graphics state.
Status execStream(Machine& machine)
{
    const std::string name = streamName(machine);
    const UserStreams::Bytes bytes = machine.userStreams().find(name); // it may be replaced while it runs
    if (!bytes)
        return { Error::StreamUndefined, Attribute::StreamName };
    Status status = machine.userStreams().enter(name);
    if (!status.isOk())
        return status;
    status = machine.runUserStream(*bytes);
    machine.userStreams().leave();
    return status;
}

Status removeStream(Machine& machine)
{
    if (!machine.userStreams().remove(streamName(machine)))
        machine.reporter().warn(
            "pclxl.stream-not-removed", "a user stream is to be removed that does not exist (StreamUndefined)");
    return {};
}

} // namespace quillrip::pclxl::commands
