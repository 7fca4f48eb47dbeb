#pragma once
// The interface texts in the program's resources: string-table texts by id and group texts
// (model names and numbers) by group and key, in a requested language with the fallback
// through related languages, decoded from their stored form.

#include <windows.h>

#include <cstdint>
#include <string>

// The text of a string id; empty (and a log line) when no language on the way has it.
std::wstring LoadTableString(uint32_t stringId_I, LANGID languageId_I, bool fallbackAllowed_I = true,
                             HMODULE module_I = nullptr);

// The text of a key in a group ("2000" model names, "2101" model numbers); empty (and a log
// line) when the group or the key is missing.
std::wstring LoadGroupString(const std::string& group_I, uint16_t key_I, LANGID languageId_I,
                             HMODULE module_I = nullptr);

// The language whose string table serves a string id for a requested language, after the
// fallback; 0 when no table on the way has it.
LANGID TableLanguage(uint32_t stringId_I, LANGID languageId_I, HMODULE module_I = nullptr);
