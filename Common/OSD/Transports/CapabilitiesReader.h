#pragma once
// The MCCS capabilities read over a transport that carries raw DDC/CI bytes: request 0xF3 at
// an offset, take the data of the 0xE3 reply, advance the offset by what was taken, and stop
// at the empty reply. The result is cut to its balanced parentheses.

#include <string>

class Connector;

struct SCapabilitiesReadTiming {
    double replyWaitSeconds = 0.05;  // MCCS asks at least 50 ms before reading the reply
    unsigned expectedSize = 38;
    int attemptsPerChunk = 3;  // a chunk that fails its checks is asked for again
};

std::string ReadCapabilitiesByOffset(Connector& connector_I, const SCapabilitiesReadTiming& timing_I = {});
