// The same text in other letter cases, for whatever ignores the case of A to Z.
#ifndef TESTS_CFG_USER_INI_READER_LETTER_CASE_H
#define TESTS_CFG_USER_INI_READER_LETTER_CASE_H

#include <string>

// Every letter in the other case.
std::string in_swapped_case(std::string text);

// aLtErNaTiNg, beginning with a lower-case letter.
std::string in_mixed_case(std::string text);

#endif
