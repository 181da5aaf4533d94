// zentrelLibTest: start-up, signals, the library session and the command line.
#include <csignal>
#include <cstdio>
#include <cstring>
#include <unistd.h>

#include "commands.h"
#include "discovery.h"
#include "helpers.h"
#include "output.h"
#include "zentrel.h"

namespace {

const char kTitle[] = "ZentrelLib-Test Utility";
const int kVersion[4] = {4, 20, 13, 0};
const char kDashes[] = "-------------------------------------------------------------";

// Writes a constant text with write(2): the only output a signal handler may do.
template <size_t N>
void WriteConstant(const char (&text)[N]) {
    ssize_t written = write(STDOUT_FILENO, text, N - 1);
    (void)written;
}

// What was printed before the signal is written out first, so that the
// message follows it (see output.h).
void OnSignal(int signal) {
    if (signal == SIGINT) {
        WritePendingOutput();
        WriteConstant("\n zentreltest interrupted");
        _exit(1);
    }
    if (signal == SIGQUIT) {
        WritePendingOutput();
        WriteConstant("\n zentreltest quit received");
        _exit(1);
    }
    WriteConstant("\nother signal received");
}

void PrintBanner() {
    printf(" ");
    printf("%s \n", kDashes);
    printf("%s v%d.%d.%d.%d", kTitle, kVersion[0], kVersion[1], kVersion[2], kVersion[3]);
    printf(", Copyright (c) Zentrel Technologies. All rights reserved.\n");
    printf("%s \n", kDashes);
    printf(" ");
}

bool Is(const char *word, const char *name) {
    return word != nullptr && strcmp(word, name) == 0;
}

}  // namespace

int main(int argc, char **argv) {
    StartBufferedOutput();

    if (signal(SIGINT, OnSignal) == SIG_ERR) printf("signal(SIGINT) error\n");
    // The SIGQUIT failure reports with the SIGINT text, as it always has.
    if (signal(SIGQUIT, OnSignal) == SIG_ERR) printf("signal(SIGINT) error\n");
    PrintBanner();

    if (ZentrelInitialize() != ZENTREL_STATUS_SUCCESS) {
        printf("Initialization of Zentrel Library interface failed.");
        return 1;
    }

    int dispatch = 0;
    // Accepted and checked for compatibility; nothing reads it afterwards.
    int32_t asyncTimeout = 0xFFFF;
    uint32_t position = 0;
    bool runForms = true;

    if (argc > 1) {
        const char *first = argv[1];
        if (Is(first, "-i")) {
            dispatch = 1;
        } else if (Is(first, "-list")) {
            // Expected form: -list -addr <hex address> -bus <SMBus number>;
            // the words in between are not examined.
            if (argc >= 4) ListDevices(argv[argc - 3], argv[argc - 1]);
            runForms = false;
        } else if (Is(first, "-sdb")) {
            printf("\nUsage: zentrelLibTest -sdb <uart_intf>\n");
            runForms = false;
        } else if (Is(first, "-h") || Is(first, "--help") || Is(first, "-help")) {
            printf("\nUsage: zentrelLibTest -list, to list all supported devices\n");
            printf("\nUsage: zentrelLibTest -i index -h, to show help menu for corresponding chip\n");
            runForms = false;
        } else if (Is(first, "-asynctimeout")) {
            ParseDecimal(argv[2], &asyncTimeout);
        }

        if (runForms) {
            bool runTable = true;
            if (argc >= 10 && Is(argv[argc - 6], "-bus") && Is(argv[argc - 4], "-dev") &&
                Is(argv[argc - 2], "-func")) {
                runTable = DiscoverByAddress(dispatch, "0", "0", argv[argc - 5], argv[argc - 3],
                                             argv[argc - 1]) == 0;
            } else if (argc >= 8 && Is(argv[argc - 4], "-addr") && Is(argv[argc - 2], "-bus")) {
                runTable = DiscoverByAddress(dispatch, argv[argc - 3], argv[argc - 1], "0", "0", "0") == 0;
            }
            if (runTable && dispatch == 1) DispatchCommand(static_cast<uint32_t>(argc - 1), argv + 1, &position);
        }
    }
    (void)asyncTimeout;

    if (ZentrelExit() != ZENTREL_STATUS_SUCCESS) {
        printf("EXIT of Zentrel Library interface failed.");
        return 1;
    }
    return 0;
}
