#pragma once

namespace tarvo {

// The whole program: builds the real platform, runs start-up and the event loop, and returns the
// exit status.
int runTarvo(int& argc, char** argv);

} // namespace tarvo
