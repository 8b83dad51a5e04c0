#pragma once

#include <string>
#include <vector>

// Stand-ins for the image operations of the host's graphics library, which write down how they are
// called and make simple pictures. They are linked into the program, so that they are found before
// the library's.
namespace recording {

// What was called, in order, with the arguments that matter.
extern std::vector<std::string> calls;
// The operation of this name fails with error 109 when it is called.
extern std::string failing;

// Whether commands run in the editor's reduced mode.
extern bool reduced;

// Forgets all of it.
void Restart();

}  // namespace recording
