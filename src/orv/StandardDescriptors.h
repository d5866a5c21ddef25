// Standard input, output and error of the process.
#pragma once

namespace orv {

// To be called before anything is opened. Where one of the three is closed, it is opened so that
// using it fails: otherwise the next file or connection would take its number, and reports would
// go into it. Throws ResultException.
void keepStandardDescriptors();

}  // namespace orv
