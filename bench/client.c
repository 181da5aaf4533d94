/* The least a C program can do for the benchmarked commands: the same
 * library calls as zentrelLibTest -i 0 <command>, and the same bytes
 * written line by line through a fully buffered standard output. It does
 * no formatting at all: the bytes are the utility's own output, read from
 * a file before the clock matters. So it is a lower bound, not a rival
 * implementation.
 *
 *   client -temp|-swerr|-portprop <file with the utility's output>
 */
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "zentrel.h"

static char *ReadWhole(const char *path, size_t *size) {
    int fd = open(path, O_RDONLY);
    struct stat st;
    if (fd < 0 || fstat(fd, &st) != 0) return NULL;
    char *bytes = malloc((size_t)st.st_size + 1);
    size_t got = 0;
    while (bytes != NULL && got < (size_t)st.st_size) {
        ssize_t n = read(fd, bytes + got, (size_t)st.st_size - got);
        if (n <= 0) break;
        got += (size_t)n;
    }
    close(fd);
    *size = got;
    return bytes;
}

int main(int argc, char **argv) {
    if (argc != 3) {
        fprintf(stderr, "usage: client -temp|-swerr|-portprop <expected output>\n");
        return 2;
    }
    size_t size = 0;
    char *output = ReadWhole(argv[2], &size);
    if (output == NULL) {
        perror(argv[2]);
        return 2;
    }
    if (ZentrelInitialize() != ZENTREL_STATUS_SUCCESS) return 1;
    ZENTREL_DEVICE_CONTEXT context;
    memset(&context, 0, sizeof context);
    ZentrelGetDeviceInfo(0, ZENTREL_DEVICE_INFO_LENGTH, &context.Info);
    context.Handle = context.Info.Handle;

    if (strcmp(argv[1], "-temp") == 0) {
        uint32_t temperature = 0;
        ZentrelGetTemperature(&context, &temperature);
    } else if (strcmp(argv[1], "-swerr") == 0) {
        ZENTREL_SWITCH_PORT_ERROR_STATISTICS statistics;
        for (uint32_t port = 0; port < 144; ++port) ZentrelSwitchGetPciPortErrorStatistics(&context, port, &statistics);
    } else if (strcmp(argv[1], "-portprop") == 0) {
        static ZENTREL_SWITCH_PORT_PROPERTIES properties;
        ZENTREL_DEVICE_INFO info;
        ZentrelSwitchGetPciePortProperties(&context, &properties);
        ZentrelGetDeviceInfo(context.Handle, ZENTREL_DEVICE_INFO_LENGTH, &info);
    } else {
        fprintf(stderr, "client: unknown command %s\n", argv[1]);
        return 2;
    }

    for (size_t start = 0; start < size;) {
        char *end = memchr(output + start, '\n', size - start);
        size_t length = end != NULL ? (size_t)(end - (output + start)) + 1 : size - start;
        fwrite(output + start, 1, length, stdout);
        start += length;
    }
    ZentrelExit();
    return 0;
}
