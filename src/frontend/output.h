// Standard output: buffered, yet an interrupt or quit message still comes
// after everything printed before it.
//
// Scripts run the utility in loops, often over a slow console, and one
// write(2) for every printf is what they would pay for most. So standard
// output is a stream that gathers what is printed in a buffer of our own
// and writes it out when the buffer is full (4096 bytes, as the C library
// buffers a pipe or a file), before standard input is read, before a wait,
// and at exit; on a terminal, also at the end of every line. Because the
// buffer is ours, not the C library's, the signal handler can write out
// what is still pending with write(2) alone and then its message: the
// order is kept, and nothing it calls is unsafe in a signal handler.
#ifndef ZENTRELLIBTEST_OUTPUT_H
#define ZENTRELLIBTEST_OUTPUT_H

// Makes standard output the buffered stream. Called once, first thing in main.
void StartBufferedOutput();

// Writes out what is pending (before a read or a wait). Safe from any thread.
void FlushOutput();

// For a signal handler that ends the process: writes out what is pending
// with write(2) only.
void WritePendingOutput();

#endif
