#include "platform/FirstCharacters.h"

#include "platform/macos/Strings.h"

namespace tavelle {

std::string_view firstCharacters(std::string_view text, std::size_t count) {
  NSString* const string = nsString(text);
  if (!string) return text.substr(0, count);
  NSUInteger end = 0;
  for (; count > 0 && end < string.length; --count) {
    const NSRange character = [string rangeOfComposedCharacterSequenceAtIndex:end];
    end = character.location + character.length;
    // A line's end of two is one character, which composed sequences are not documented to keep together.
    if (end < string.length && [string characterAtIndex:end - 1] == '\r' && [string characterAtIndex:end] == '\n')
      ++end;
  }
  return text.substr(0, [[string substringToIndex:end] lengthOfBytesUsingEncoding:NSUTF8StringEncoding]);
}

}  // namespace tavelle
