#pragma once

#include <string_view>

namespace tavelle::x11 {

// Names of the targets under which X11 applications offer and ask for plain text.
inline constexpr std::string_view targetUTF8String = "UTF8_STRING";
inline constexpr std::string_view targetPlainTextUTF8 = "text/plain;charset=utf-8";
inline constexpr std::string_view targetPlainText = "text/plain";
inline constexpr std::string_view targetString = "STRING";  // Latin-1
inline constexpr std::string_view targetText = "TEXT";      // in an encoding of the owner's choice
inline constexpr std::string_view typeCompoundText = "COMPOUND_TEXT";

// Clipboard histories that know this target do not record contents which offer it with this value.
inline constexpr std::string_view targetPasswordManagerHint = "x-kde-passwordManagerHint";
inline constexpr std::string_view passwordManagerHintSecret = "secret";

// Whether the target belongs to the selection protocol itself: it tells of the contents or acts on them, and is none of
// them. To ask for some of these has effects (DELETE).
bool isProtocolTarget(std::string_view name);

// Whether the target's value means something only while its owner lives: pointers into its memory, identifiers of its
// server resources. Handed out by anybody else it crashes the program that trusts it.
bool isBoundToItsOwner(std::string_view name);

}  // namespace tavelle::x11
