#pragma once
// The reads display discovery makes of SetupAPI records and registry values, through the
// discovery system table (so that a simulated machine answers them too).

#include <windows.h>
// windows.h first: setupapi.h needs its types.
#include <setupapi.h>

#include <string>

#include "ByteBuffer.h"

// A SetupAPI text property into a zeroed 1024-byte buffer; false on failure.
bool ReadTextProperty(HDEVINFO devices_I, SP_DEVINFO_DATA& device_I, DWORD property_I, std::string& text_O);
// A registry value of at most size_I bytes; false when the value is missing or too large.
bool ReadRegistryValue(HKEY key_I, const char* name_I, ByteBuffer& value_O, size_t size_I);
// A registry text value up to its first zero byte.
std::string RegistryText(const ByteBuffer& value_I);

enum class EDetail { Read, NoData, Failed };
// The device path of an interface (and its device, when asked for): the size first, then the
// detail record.
EDetail ReadInterfacePath(HDEVINFO devices_I, SP_DEVICE_INTERFACE_DATA& interface_I,
                          SP_DEVINFO_DATA* device_O, std::string& path_O);
