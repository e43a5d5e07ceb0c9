// StreamText.h: the text form of a component stream, as a person writes it, to the binary form and back.
//
//   object Form1: TForm                  // "object TForm" where the component has no name
//     Caption = 'Hello'#13#10'second line'
//     Tag = 7                            // or $1F; 64 bits with sign
//     Ratio = 0.5                        // has a point or an exponent: 1e9; also +INF, -INF, +NAN
//     Font.Size = 9
//     Anchors = [akLeft, akTop]          // set
//     Source = Form1.Table1              // identifiers, so True, nil, Null too
//     Rules = <                          // collection
//       item
//         Name = 'Task'
//       end>
//     Icon.Data = {0123456789ABCDEF}     // bytes
//     Lines.Strings = ('a' 'b')          // list of any values
//     object Button1: TButton            // owned objects stand behind the properties
//     end
//   end
//
// Between two words or signs there may be any number of blanks, tabs, line ends (CR, LF or both) and comments, which
// go from // to the end of their line. The file is UTF-8, with or without a byte order mark.
//
// A text is made of pieces without anything between them: 'quoted', with '' for a quote within; #N, a code point in
// decimal; #$XX, a byte that is no text. A + between two pieces joins them across lines. A + with a letter or digit
// right behind it isn't one of these: it is the sign of a number.
//
// The words object, end and item are known in any letter case. Each can be the name of a property, a component or a
// class as well, for it is such a word only where none of those can stand:
//   - a word with "=" behind it, or with a point and more, names a property;
//   - the word behind "object" is a component or class, whatever it is;
//   - behind "=" or ":" the three are values or classes only in the line of that sign; in another something is missing.
//
// Nothing here knows of classes. The two forms hold the same, so that either can be made again from the other:
//   TextToBinary(BinaryToText(stream)) == stream
//   BinaryToText(TextToBinary(text))      // the same form as this code lays it out
// Laid out means: two blanks for a level (no more from the 20th on), LF, a property a line, 32 bytes of a block a line,
// numbers as short as they can be, and a text that needs more than 80 columns broken behind its own line ends and where
// a line gets full. Characters that no one sees are written by number: controls, line and paragraph separators, marks
// of direction, U+FEFF, and what is no character.
//
// Cost: linear. TextToBinary gives at most 3 bytes for each of the text and 12 more,
// BinaryToText at most 50 for each of the stream; neither needs memory for more than that and one text or block.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/component/StreamFormat.h"

namespace vx {

/// The whole stream, head included. Raises EReadError with line, column and offset of whatever in the text is not as
/// above, or beyond the limits of a stream. Broken UTF-8 anywhere is told before all that stands behind the first word.
std::string TextToBinary(std::string_view text);

/// Raises EReadError with the offset in the stream; bytes behind its end, which would be lost, are an error too.
std::string BinaryToText(std::string_view stream);

/// The place in `text` of what made the byte at `offset` of TextToBinary(text): the last word or sign of the text that
/// begins at or before that byte. Of a block, list or collection it is the sign that opens it, of an end the word or
/// sign that ends. For the head it is the beginning of the root. The place's Offset is that in the text. Raises
/// EReadError as TextToBinary does, and takes as long.
TStreamPlace PlaceInText(std::string_view text, std::uint64_t offset);

}  // namespace vx
