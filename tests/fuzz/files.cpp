// The file readers with arbitrary contents: the first byte of the input
// chooses the reader, the rest is the file (for the signed debug token, the
// second byte splits the rest into the claims file and the signature).
// Each reader is run as its one-shot command on switch 0; the simulator
// reads the images, the token and the certificate in turn.
#include <cstdint>
#include <initializer_list>

#include "harness.h"

namespace {

struct Reader {
    const char *file;
    std::initializer_list<const char *> words;
};

const Reader kReaders[] = {
    {"fw.bin", {"-i", "0", "-dl", "-f", "fw.bin"}},
    {"pldm.bin", {"-i", "0", "-pldm", "-f", "pldm.bin"}},
    {"usd_dl.bin", {"-i", "0", "-downloadusd"}},
    {"cfg.bin", {"-i", "0", "-downloadCfgPage", "cfg.bin"}},
    {"token.cbor", {"-i", "0", "-EnableDebugToken", "-f", "token.cbor"}},
    {"sig.bin", {"-i", "0", "-GenerateDebugToken", "-o", "2", "-s", "sig.bin"}},
    {"spdm_cert.bin", {"-i", "0", "-spdmimport", "0", "0"}},
};
constexpr size_t kReaderCount = sizeof kReaders / sizeof kReaders[0];


}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return -1;
    const Reader &reader = kReaders[data[0] % kReaderCount];
    const uint8_t *content = data + 1;
    size_t length = size - 1;
    fuzz::Begin(nullptr, 0);
    if (reader.words.size() == 8 && length > 0) {  // the signed token: claims, then signature
        size_t claims = content[0] < length - 1 ? content[0] : length - 1;
        fuzz::WriteFile("cwt.txt", content + 1, claims);
        content += 1 + claims;
        length -= 1 + claims;
    }
    fuzz::WriteFile(reader.file, content, length);
    fuzz::Dispatch(reader.words);
    // A certificate taken is read back out of its slot.
    if (&reader == &kReaders[kReaderCount - 1]) fuzz::Dispatch({"-i", "0", "-spdmread", "0", "0"});
    fuzz::End();
    return 0;
}
