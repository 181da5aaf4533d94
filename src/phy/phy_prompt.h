// Prompts of the PHY handlers: the text without a newline, then one value.
#ifndef ZENTRELLIBTEST_PHY_PROMPT_H
#define ZENTRELLIBTEST_PHY_PROMPT_H

#include <cstdint>

// "%d"; standard input is flushed first when flush is set. An answer that
// is not a number gives 0.
int32_t AskLaneValue(const char *prompt, bool flush = true);
// "%x", after flushing standard input.
uint32_t AskLaneHex(const char *prompt);

#endif
