#pragma once
// Access keys (the underlined letter of a caption, Alt+letter) for the captions of one dialog,
// chosen so that no two share a key. Most languages mark a letter of the caption itself, the
// first letter of a word where it is free ("&Brightness:"); Japanese, Korean and Chinese
// captions carry the English caption's letter in brackets before a closing colon or ellipsis
// ("明るさ(&B):", "詳細設定(&A)..."), as Windows itself writes them.

#include <string>
#include <vector>

namespace AccessKeys {

// The captions with their keys marked by "&" (a "&" in a text is doubled). english_I holds the
// same captions in English, used for the bracketed form; captions without a free letter stay
// without a key.
std::vector<std::wstring> Mark(const std::vector<std::wstring>& captions_I,
                               const std::vector<std::wstring>& english_I, bool bracketed_I);

}  // namespace AccessKeys
