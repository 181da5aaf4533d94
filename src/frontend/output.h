// Standard output: buffered, yet an interrupt or quit message still comes
// after everything printed before it.
//
// Scripts run the utility in loops, often over a slow console, and one
// write(2) for every printf is what they would pay for most. So standard
// output is a stream with a 4096-byte buffer (as the C library gives a pipe
// or a file), written out when it is full, before standard input is read,
// before a wait, and at exit; on a terminal, also at the end of every line.
// The signal handler writes out what is still pending with write(2) alone,
// reading the stream's fill pointers (GNU C library fields, which the
// pointers are moved by only after the bytes are in place), then its
// message: the order is kept, and nothing it calls is unsafe in a signal
// handler. The stream's own write function keeps the ending signals
// blocked until the bytes it wrote are no longer counted as pending, so no
// byte is written twice.
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
