#pragma once

namespace tarvo {

// The whole of tarvovideo, the helper program that plays the exercise videos inside the player of
// the program on its behalf: one command a line on its standard input (see VideoService.h), until
// that input ends. Not meant to be started by hand. Returns the exit status.
int runTarvoVideo(int& argc, char** argv);

} // namespace tarvo
