// What every fuzz target shares: a scratch working directory, standard
// output thrown away, standard input replaced by the input's bytes, waits
// that do not wait, and the utility's and the simulator's state reset
// between inputs.
#ifndef ZENTRELLIBTEST_FUZZ_HARNESS_H
#define ZENTRELLIBTEST_FUZZ_HARNESS_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "zentrel.h"

namespace fuzz {

// Once per process: moves into a scratch directory of its own (under
// $ZENTREL_FUZZ_SCRATCH or /tmp), sends standard output to /dev/null and
// puts /dev/null on descriptor 0 (so that no prompt ever sees a terminal).
void Setup();

// Before each input: standard input reading the given bytes, and waits
// that return at once until End(). With the library: also an empty scratch
// directory, a fresh simulator with its defaults (or with the scenario and
// state file the environment names) opened as the utility opens it, and the
// utility's process-wide choices forgotten.
void Begin(const uint8_t *input, size_t size, bool library = true);
// The library's and the utility's part of Begin, without opening the
// library: an empty scratch directory, the model and the choices forgotten.
void Fresh();
// After each input: closes the library (if opened) and the input stream.
void End();

// The words of an input: one a line, with '/' turned into '_' so that a
// file named by a word stays in the scratch directory.
std::vector<std::string> Words(const uint8_t *data, size_t size);
// A word list as the dispatcher takes it, ending with a null entry.
std::vector<char *> Argv(std::vector<std::string> &words);

// Runs one command line (words after the program name) as the utility's
// command-line dispatcher does.
void Dispatch(std::initializer_list<const char *> list);

// Writes bytes to a file of the scratch directory.
void WriteFile(const char *name, const uint8_t *data, size_t size);

}  // namespace fuzz

#endif
