// The module's two classes, by which a host creates them through the class registry.
#pragma once

#include "platform/com.h"

// {D8DF3849-A01D-4254-A57D-5515BF9E3886} The plug-in instance.
inline constexpr CLSID CLSID_TarnFilter =
    MakeGuid(0xD8DF3849, 0xA01D, 0x4254, 0xA5, 0x7D, 0x55, 0x15, 0xBF, 0x9E, 0x38, 0x86);
// {7EE1B0E4-0780-435C-9646-D5AB1F16BAFD} Its property page.
inline constexpr CLSID CLSID_TarnPropertyPage =
    MakeGuid(0x7EE1B0E4, 0x0780, 0x435C, 0x96, 0x46, 0xD5, 0xAB, 0x1F, 0x16, 0xBA, 0xFD);
