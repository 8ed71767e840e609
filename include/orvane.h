/*
 * Orvane: runs a card-script language one statement at a time, drives card readers of many makes
 * behind one interface, and converts between octets and text.
 *
 * How the calls work together: RunScript turns a statement into a code and a text. If the text is a
 * card command, the host sends it with SendCommand. Then the host stores the answer in variables
 * with SetVarValue, where later statements can read it. The script engine never uses a reader.
 *
 * Rules for all functions:
 *  - Texts are zero-terminated bytes, and nobody converts them, with two exceptions. The library's
 *    own messages are UTF-8. Names of readers and paths of log files are in the ANSI code page on
 *    Windows; elsewhere they are the bytes that the maker's library or the system uses, but the
 *    names that GetReaderList gives for ReaderKindTcp are in the locale's character set.
 *  - Every buffer belongs to the caller, and is used only during the call. No function knows the
 *    size of an output buffer: its description says how much room it needs.
 *  - Pointers are not checked. They must not be null unless a description allows it.
 *  - Hexadecimal text has two digits for each octet, the high digit first. The library writes upper
 *    case without blanks. It reads either case and skips blanks (0x20).
 *  - Upper and lower case (a to z only) are the same in names of variables and of script commands,
 *    and in the tags of FindTagdictData and AddTagdictData. In all other texts that are not
 *    hexadecimal, they differ: in names of readers, too.
 *  - The library starts no threads, and only the log files have a lock. Use each of these from one
 *    thread at a time: the script functions, the reader functions, the dictionary functions, each
 *    tag parser.
 *  - A maker's library or a crypto module may call back while it runs, on the same thread. Then
 *    RunScript gives ScriptException and the empty text, a reader function gives 0 (SendCommand
 *    also the empty text), and nothing changes. The other functions work as usual.
 *  - The buffers of one call must not overlap. Only these may begin at the same place: script and
 *    result of RunScript, cmdHex and respHex of SendCommand, text and output of URLDecode,
 *    AsciiToHex, ASCII2UTF_8 and UTF_82ASCII, stampText and out of GetTimeStrFromTimeStampStr.
 *  - A thread that is cancelled inside a function (POSIX) ends the process. Fork while no thread is
 *    inside a function. The child has its own variables and dictionary, but it shares the
 *    connections of open readers with its parent, and should not use them.
 *  - Once loaded, the library stays in the process with its variables and open readers, even if a
 *    host unloads it.
 */
#ifndef ORVANE_H
#define ORVANE_H

#include <stdint.h>

#if defined(_WIN32) && !defined(ORVANE_BUILDING)
#define ORVANE_API __declspec(dllimport)
#elif !defined(_WIN32) && defined(__GNUC__)
#define ORVANE_API __attribute__((visibility("default")))
#else
#define ORVANE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Scripts ---------------------------------------------------------------------------------
 *
 * A statement is one line without its line end:
 *
 *   %NAME = operands        an assignment; NAME = operands stores under a name without the %
 *   operands                an expression, most often a card command
 *   $ anything              a line for the host; RunScript gives only its code
 *   ; or / and anything     a comment
 *
 * An operand is a variable, %NAME, a command, @name(argument, ...), or any other word, which stands
 * for itself. The values of operands side by side are joined. A word that begins with $ or =, and
 * an @ word without "(", count for nothing: 00 $AA gives 00.
 *
 * A command fails if an argument fails or is empty, if it can't use a key, data or a mask, if there
 * is no memory or no crypto module, if its value is above 16 MiB, and inside 128 other commands. A
 * failed command leaves a message or nothing as its value. It does not end the statement, and the
 * statement keeps its code. The arguments that the command has not read become operands of the
 * statement.
 *
 * So a text with code 1 may contain a message, in upper case like the rest:
 * `00B0VAR "%X" NOT DEFINE `. The host must look at the characters, and send only commands: nothing
 * but hexadecimal digits, whole octets, at least four. Unread arguments may look like a command
 * too, so scripts should compare the length of what they have computed.
 */

/* What a statement was: the codes of RunScript for a statement that ran to its end. If an argument
 * fails, the text of 2, 3 and 8 is what the argument left: @setreader(%X) with an undefined %X
 * gives 2 and the message. */
enum StatementKind {
  KindAssignment = 0, /* stored; text: the stored value. Also a statement of blanks only */
  KindExpression = 1, /* text: the operands' values joined, in upper case */
  KindSetReader = 2,  /* @setreader(reader); text: the argument */
  KindSetSlot = 3,    /* @setslot(slot); text: the argument */
  KindReset = 4,      /* @reset(); text: empty if it stands alone */
  KindDollar = 5,     /* the statement begins with $; nothing of it was evaluated; text: empty */
  KindStop = 6,       /* @stop(); text: empty if it stands alone */
  KindCompare = 7,    /* @compare(left, right, expected); text: "1" if as expected, else "0" */
  KindOpenReader = 8  /* @OPENREADER(reader); text: the argument */
};

/* The other codes of RunScript, SetVarValue and GetVarValue. Code 1 of RunScript also means that
 * the statement failed, in these cases:
 *  - The statement begins with "(", ")" or ",". The text is empty.
 *  - An operand names an undefined variable. The text is the message `var "%NAME" not define ` with
 *    its last blank. It has lower case, which the value of an expression never has.
 *  - Memory ran out for an operand. The text is empty. If memory runs out inside a command, only
 *    the command fails. */
enum ScriptCode {
  ScriptNoEngine = -1,      /* no memory for the engine; the next call tries again */
  ScriptDone = 0,           /* SetVarValue: stored. GetVarValue: the variable exists */
  ScriptNothingToRun = 100, /* an empty statement or a comment; text: empty */
  ScriptUndefinedVariable = 1001,
  ScriptEmptyName = 1002,
  ScriptException = 1024 /* out of memory, or a text that result cannot hold */
};

/* Runs one statement and gives its code.
 *
 *   script  the statement; null counts as the empty text
 *   result  room for 512 bytes. All of them are written: the text, at most 511 bytes, and zeros
 *           behind it. Untouched on ScriptNoEngine
 *
 * Result: a StatementKind for a statement that ran to its end, else a ScriptCode.
 *
 * Errors: A failed statement changes no variable. A text of more than 511 bytes gives
 * ScriptException and the empty text. An assignment is different: it stores the whole value, and
 * gives its first 511 bytes.
 *
 * The commands with the kinds 2 to 8 should stand alone. Such a command, even inside an argument,
 * ends the statement behind the operand that it stands in. No later operand is evaluated, and
 * nothing is stored. The text is the value of the operands up to there, in its own case; in an
 * assignment it is empty. */
ORVANE_API int32_t RunScript(const char* script, char* result);

/* Stores a value under a name.
 *
 *   name   the name of the variable. The % of a script's variable is part of it: a script reads
 *          SetVarValue("%SW", "9000") as %SW
 *   value  the value; it is stored unchanged, whatever its length
 *
 * Result: ScriptDone, ScriptEmptyName, ScriptException or ScriptNoEngine.
 *
 * Variables live until the process ends. */
ORVANE_API int32_t SetVarValue(const char* name, const char* value);

/* Tells whether a variable exists.
 *
 *   name  the name of the variable, with the % of a script's variable
 *
 * Result: ScriptDone if it exists, ScriptUndefinedVariable if not; ScriptEmptyName, ScriptException
 * or ScriptNoEngine.
 *
 * To read a value, run the name of the variable as a statement; the text is in upper case. */
ORVANE_API int32_t GetVarValue(const char* name);

/* ---- Readers ---------------------------------------------------------------------------------
 *
 * Sixteen readers can be open side by side, numbered 0 to 15. SetReader chooses the current reader,
 * which the other functions use. A card slot is something else: one of the card interfaces of a
 * reader.
 *
 * Order of calls: SetReader, unless the reader is the current one; OpenReader or OpenReaderA;
 * ChangeSlot if the reader has several card interfaces; Reset; SendCommand any number of times;
 * CloseReader. The functions give 1 for success and 0 for failure, and no other code. They wait as
 * long as the library of the reader's maker does.
 */

/* The kinds of readers, each with the library of its maker. The library's file is NAME.dll on
 * Windows and libNAME.so elsewhere. If the host has already loaded a library of this name, that one
 * is used. Else Orvane looks where the system looks, then in the folder of its own library. WD's is
 * taken from that folder only. */
enum ReaderKind {
  ReaderKindTyUsb = 1,    /* tykeyint.dll */
  ReaderKindTyCom = 2,    /* tyreader.dll */
  ReaderKindPcsc = 3,     /* winscard.dll: any PC/SC reader */
  ReaderKindWd = 4,       /* wdcrwx.dll */
  ReaderKindD8 = 5,       /* dcrf32.dll */
  ReaderKindFm8201 = 6,   /* no library and no reader: never opens; SendCommand gives 1 and "" */
  ReaderKindS5009 = 7,    /* S5009.dll */
  ReaderKindS5009Ats = 8, /* S5009.dll; Reset gives the ATS */
  ReaderKindTcp = 10,     /* a payment HSM; its name is IPv4-ADDRESS:PORT */
  ReaderKindIcr = 11,     /* sdtapi.dll: identity cards */
  ReaderKindBsit = 12     /* STJZZ_BSIT.dll */
};

/* A record of a reader list: 272 octets without gaps. */
typedef struct ReaderInfo {
  int32_t kind;     /* as the driver reports it: ReaderKindS5009 for both S5009 kinds */
  int32_t hasPort;  /* 1: port is a port number. 0: the reader has only a name */
  int32_t port;     /* for OpenReader, except for the kinds 10 and 11; 0 if hasPort is 0 */
  char name[256];   /* zero-terminated; for OpenReaderA, except for kind 10: its listed names open
                       nothing, only an address does */
  int32_t reserved; /* 0 */
} ReaderInfo;

/* Lists the readers of one kind.
 *
 *   kind   a ReaderKind
 *   list   room for max records if max is above 0 and the kind honours it (1, 2, 3, 7, 8, 11); else
 *          for 16 or count + 1 records, whichever is more. 32 records hold every list with a count
 *          of at most 31 and a max of at most 32
 *   count  how many ports to offer, for the kinds whose ports can't be asked for (2, 5, 7, 8, 10,
 *          11). The kinds 5 and 10 stop at 16 records. The kinds 5 and 11 add one record for their
 *          USB reader
 *   max    the most records wanted, if above 0. Otherwise kind 3 takes 16
 *
 * Result: the number of records written; 0 for a kind that does not exist. The kinds 1, 3 and 12
 * ask their library, and give 0 if it can't be loaded. The other kinds list the same ports with and
 * without their library.
 *
 * Open readers are not disturbed. Kind 0, which no reader has, may list the kind listed before.
 *
 * ReaderKindTyUsb lists a key by its index in the library's table, from 0 on. To open a key, Orvane
 * gives the library the number in the name, or the port, less 1. If the library opens by the same
 * index, the key listed as USB0 opens as USB1. */
ORVANE_API int32_t GetReaderList(int32_t kind, ReaderInfo* list, int32_t count, int32_t max);

/* Makes one of the sixteen readers the current one.
 *
 *   index  the number of the reader, 0 to 15
 *
 * Result: 1, or 0 with nothing changed if index is above 15. */
ORVANE_API int32_t SetReader(uint32_t index);

/* Opens the current reader by port.
 *
 *   port  the port, as GetReaderList gives it
 *   kind  a ReaderKind
 *   baud  the baud rate. No driver reads it: pass 9600
 *
 * Result: 1 for success, 0 for failure.
 *
 * The first open puts a driver of its kind in the reader's place. Opening another kind closes what
 * was open there first; opening the same kind again does not. A kind that does not exist empties
 * the place and gives 0. Use -1 for that: a driver whose kind never opened may count as kind 0, and
 * stays.
 *
 * PC/SC connects in shared mode and takes no transaction: other programs may use the card between
 * two commands. */
ORVANE_API int32_t OpenReader(int32_t port, int32_t kind, int32_t baud);

/* Opens the current reader by name.
 *
 *   name  the name, as GetReaderList gives it; the address for ReaderKindTcp
 *   kind  a ReaderKind
 *
 * Result: 1 for success, 0 for failure.
 *
 * A PC/SC reader opens without a card; Reset then finds a card that comes later. Everything else is
 * as with OpenReader. */
ORVANE_API int32_t OpenReaderA(const char* name, int32_t kind);

/* Closes the current reader.
 *
 * Result: 1 if the reader is closed now, also if it was closed before. 0 if no open call has put a
 * driver in the reader's place, or if the library refuses, in the kinds 4 and 11. Kind 11 asks its
 * library in every call.
 *
 * A card in a PC/SC reader stays as it is. */
ORVANE_API int32_t CloseReader(void);

/* Brings up the card and gives its ATR (ISO/IEC 7816-3).
 *
 *   atrHex  room for 1,025 characters: the ATR as hexadecimal text, zero-terminated; the empty text
 *           for a reader without ATR. Untouched when the result is 0
 *
 * Result: 1 for success, 0 for failure.
 *
 * With ReaderKindPcsc it reads the ATR and does not reset the card. A verified PIN, the selected
 * application and open keys survive this call, and also a close and open. They end when the card is
 * pulled, or when PC/SC's own SCardReconnect with SCARD_UNPOWER_CARD is called before OpenReaderA.
 *
 * ReaderKindWd sends the command 00 12 00 00 00. Instead of an ATR it gives the whole reply, with
 * the status word if the library returns one there. */
ORVANE_API int32_t Reset(char* atrHex);

/* Chooses the card slot of the current reader.
 *
 *   slotHex  hexadecimal text. Only the first two characters count: "0C" is slot 12, "1" is slot
 *            16. What a slot means depends on the reader
 *
 * On a reader that was never opened it does nothing. */
ORVANE_API void ChangeSlot(const char* slotHex);

/* Sends a command APDU (ISO/IEC 7816-4) to the card and gives its response.
 *
 *   cmdHex   hexadecimal text of at most 8,192 characters. Pass only digits: a character that is
 *            neither digit nor blank ends the text, and zeros are sent for the rest. Zeros are also
 *            sent for what blanks take away. 00A4Z40000 goes out as 00A4000000, which selects the
 *            MF
 *   hexLen   the length of cmdHex in characters. Half of it, rounded down, is the number of octets
 *            sent. Below 0 counts as 0
 *   respHex  room for 8,193 characters; zero-terminated and written in every case
 *
 * Result: 1 on status word 9000. After a status word 61xx one GET RESPONSE is sent; if it succeeds,
 * data before 61xx are dropped. After success the kinds 3, 5 and 12 give the data without the
 * status word, or 9000 if there is no data. The kinds 4, 7 and 8 give the data and the status word.
 * The kinds 1 and 2 give what their library replied, perhaps nothing. The kinds 6, 10 and 11 have
 * no status word: 10 gives 1 and what came, 6 and 11 give 1 and the empty text.
 *
 * Errors: With any other status word the result is 0 and respHex holds the first two octets of the
 * reply. These are the status word, unless data stand before it. They are 0000 if the kinds 1, 2
 * and 4 had no reply; the kinds 1 and 2 have none when closed. If there was no answer, or if hexLen
 * is above 8,192, the result is 0 and respHex is empty.
 *
 * A command with an extended length goes out if its reader takes that many octets. An answer has at
 * most 256 octets with the status word; the kinds 1 and 2 do not count the status word. The kinds 7
 * and 8 give at most 128 octets, kind 10 at most 4,096. */
ORVANE_API int32_t SendCommand(const char* cmdHex, int32_t hexLen, char* respHex);

/* ---- Conversions -----------------------------------------------------------------------------
 *
 * In the names of these functions, Hex means octets; Ascii and HexStr mean their hexadecimal text.
 * No function writes a terminator: fill the buffer with zeros first if you want a terminated text.
 * A count or length below 1 means no octets or no text.
 */

/* Escapes every byte but ASCII letters and digits as %XX (RFC 3986).
 *
 *   text  the text
 *   out   room for three times the length of text; the length written is not given */
ORVANE_API void URLEncode(const char* text, char* out);

/* Undoes URLEncode, and turns a + into a blank.
 *
 *   text  the escaped text
 *   out   room for the length of text; the length written is not given
 *
 * Escapes are not checked: a digit 0-9 counts as its value, any other character as its code less
 * 55. The byte is the low eight bits of (first * 16) | second. So upper-case digits are right in
 * both places, lower-case digits only in the first. A % with fewer than two characters behind it
 * stands for itself, and so do these characters. */
ORVANE_API void URLDecode(const char* text, char* out);

/* Turns octets into upper-case hexadecimal text.
 *
 *   octets  the octets
 *   text    room for 2 * count characters
 *   count   the number of octets */
ORVANE_API void HexToAscii(const unsigned char* octets, char* text, int32_t count);

/* Turns hexadecimal text into octets.
 *
 *   text    the hexadecimal text
 *   octets  room for half as many octets as there are digits, rounded up
 *   length  the length of text in characters
 *
 * Result: 1, or 0 on a character that is neither digit nor blank; the octets before it are written.
 * An odd last digit becomes the high half of an octet. */
ORVANE_API int32_t AsciiToHex(const char* text, unsigned char* octets, int32_t length);

/* Puts \x before every two characters of a text.
 *
 *   text    the text; its characters are not examined
 *   out     room for 4 * ((length + 1) / 2) characters
 *   length  the length of text in characters
 *
 * Result: 1 if length is even and not zero, else 0. An odd last character gets its own \x. */
ORVANE_API int32_t AsciiToHexStr(const char* text, char* out, int32_t length);

/* Looks for the first character of a text that is not a digit.
 *
 *   text      the text. Blanks are not digits
 *   allowHex  0: the digits are 0-9. Any other value: they are the hexadecimal digits
 *   length    the length of text in characters
 *
 * Result: 0 if all characters are digits, else the position of the first that is not, counted from
 * 1. */
ORVANE_API int32_t CheckAsciiNum(const char* text, int32_t allowHex, int32_t length);

/* Gives the number that a hexadecimal text stands for.
 *
 *   text    the hexadecimal text, most significant digit first. An odd last digit does not count.
 *           Blanks are skipped, and zeros are added at the end to length / 2 octets
 *   value   the number
 *   length  the length of text in characters, 2 to 9
 *
 * Result: 1. 0 with value untouched on a bad character or another length. */
ORVANE_API int32_t HexStrToInt(const char* text, int32_t* value, int32_t length);

/* Gives the number that octets form.
 *
 *   octets  the octets, most significant first
 *   value   the number
 *   count   the number of octets, 1 to 4
 *
 * Result: 1. 0 with value untouched on any other count. */
ORVANE_API int32_t HexToInt(const unsigned char* octets, int32_t* value, int32_t count);

/* Gives the significant octets of a number.
 *
 *   out    room for four octets. The octets of value stand at its end, from out + 4 - *count on,
 *          most significant first. The bytes before them are untouched
 *   value  the number
 *   count  the number of octets, 1 to 4
 *
 * Result: always 1. */
ORVANE_API int32_t IntToHex(unsigned char* out, int32_t value, int32_t* count);

/* Gives the significant octets of a number as hexadecimal text.
 *
 *   out     room for eight characters; the digits begin at out[0]
 *   value   the number
 *   length  the number of digits: 2, 4, 6 or 8
 *
 * Result: always 1. */
ORVANE_API int32_t IntToHexStr(char* out, int32_t value, int32_t* length);

/* ---- Character sets --------------------------------------------------------------------------
 *
 * These convert between UTF-8 (RFC 3629) and the system's narrow character sets. On Windows these
 * are the ANSI code page and the OEM code page, which differ. Elsewhere both are the character set
 * of the environment's locale (LC_ALL, LC_CTYPE, LANG), or UTF-8 if that locale is C or POSIX. They
 * are looked up in every call. The locale of the process does not change.
 *
 * What cannot be converted is replaced: on Windows as the system does it, elsewhere a byte by
 * U+FFFD and a character by a question mark. Only the converted bytes are written, without a
 * terminator, and their number is not given: fill the buffer with zeros first.
 *
 * Only these two functions throw C++ exceptions; out is untouched then. The exception is
 * std::bad_alloc, or a std::runtime_error with one of these texts: "Invalid UTF-8 sequence." (the
 * system cannot translate the text), "La falla!" (the system gave more or less than it had
 * announced), "Error in conversion." (any other failure). To catch it, build the host with the
 * library's compiler and, if that is MSVC, with /EHs. A host in another language can't catch it.
 */

/* Converts from the ANSI code page to UTF-8.
 *
 *   text  the text
 *   out   room for three times the length of text. TSCII (for Tamil) alone needs more: there the
 *         text ends behind the last character that fits
 *
 * Errors: a C++ exception, with out untouched; the notes on character sets tell which. */
ORVANE_API void ASCII2UTF_8(const char* text, char* out);

/* Converts from UTF-8 to the OEM code page.
 *
 *   text  the text
 *   out   room for four times the length of text
 *
 * Errors: a C++ exception, with out untouched; the notes on character sets tell which.
 *
 * On Windows it does not undo ASCII2UTF_8. */
ORVANE_API void UTF_82ASCII(const char* text, char* out);

/* ---- Time ------------------------------------------------------------------------------------
 *
 * A stamp counts the seconds since 1970-01-01 08:00:00 in 32 bits. All times are UTC, without a
 * time zone, so a stamp is the Unix time less 28800. Stamps last until 2106-02-07 06:28:15. The
 * highest 28800 stamps stand for the first hours of 1970.
 *
 * Times are written as YYYY-MM-DD hh:mm:ss. Zeros fill the room behind each text. Only a withMs of
 * 1 asks for milliseconds.
 */

/* Gives the stamp of the present second.
 *
 *   stamp  the stamp */
ORVANE_API void GetTimeStampInt(uint32_t* stamp);

/* Gives the present stamp in decimal.
 *
 *   out     room for 14 bytes. A longer text (negative and with milliseconds) is cut to its first
 *           13 characters
 *   withMs  1: the milliseconds stand behind the stamp, in three digits
 *
 * From 2038-01-19 11:14:08 on the number is negative: the stamp less 2^32. */
ORVANE_API void GetTimeStampStr(char* out, int32_t withMs);

/* Gives the present time.
 *
 *   out  room for 32 bytes */
ORVANE_API void GetTimeStr(char* out);

/* Gives the time that a stamp stands for.
 *
 *   out    room for 32 bytes
 *   stamp  the stamp */
ORVANE_API void GetTimeStrFromTimeStampInt(char* out, uint32_t stamp);

/* Gives the time that a decimal stamp with milliseconds stands for.
 *
 *   out        room for 36 bytes; the empty text for a stampText below three characters
 *   stampText  the stamp with three digits of milliseconds, as GetTimeStampStr writes it with
 *              withMs 1. At most 25 characters; out is untouched if it has more
 *   withMs     1: a colon and the milliseconds stand behind the time. The last three characters of
 *              stampText are taken off in any case
 *
 * Both numbers may begin with blanks and a sign, and end at the first character that is no digit.
 * The stamp counts modulo 2^32, the milliseconds modulo 2^16. */
ORVANE_API void GetTimeStrFromTimeStampStr(char* out, const char* stampText, int32_t withMs);

/* ---- Log files -------------------------------------------------------------------------------
 *
 * These functions append to a file that the caller names. They create the file if it is missing,
 * and add neither time nor line end. The file is open only during the call. If it can't be opened,
 * nothing is written and no failure is reported. Both functions may be called from any thread; they
 * share a lock. Every entry stays whole, also if other processes append to the same file.
 */

/* Appends a text to a file.
 *
 *   path  the file
 *   text  the text. A line feed in it becomes CR LF on Windows */
ORVANE_API void AsciiLog(const char* path, const char* text);

/* Appends octets to a file, as hexadecimal text.
 *
 *   path    the file
 *   octets  the octets
 *   count   the number of octets, any. A count below 1 appends nothing */
ORVANE_API void HexLog(const char* path, const unsigned char* octets, int32_t count);

/* ---- Tags ------------------------------------------------------------------------------------
 *
 * A tag parser parses BER-TLV data (ISO/IEC 8825-1, as ISO/IEC 7816-4 uses it) and keeps the value
 * of each tag. Make one with TagParsing_Init, parse any number of texts, ask for any number of
 * tags, and free it with TagParsing_Free. Use each parser from one thread at a time.
 *
 * Tags have one octet. A first octet whose low five bits are all set (9F 36, BF 0C, FF) is refused.
 * Lengths have the short form, or the long form with one to four octets; the indefinite form is
 * refused. 00 is an ordinary tag, so no filler may stand between the elements. A constructed
 * element is kept whole, and its children are kept too, under their own tags. It may not be empty.
 * If several elements have the same tag, the last one counts; a parent comes before its children.
 */
typedef struct TagParser TagParser;

/* What a parser knows of a tag: 2,050 octets. */
typedef struct TagRecord {
  char lengthText[4]; /* the two digits of the first length octet, zero-terminated */
  char value[2046]; /* upper-case hexadecimal text with zeros behind it; no terminator when full */
} TagRecord;

/* Makes a parser that knows no tag.
 *
 * Result: the parser; null if memory ran out. */
ORVANE_API TagParser* TagParsing_Init(void);

/* Parses hexadecimal text and adds the tags that it finds.
 *
 *   parser  the parser
 *   text    the hexadecimal text
 *
 * Result: 1 if the whole text was parsed. The values found replace those known under the same tags.
 *
 * Errors: 0 on the first element that is malformed, refused, longer than the text or longer than
 * 1,023 octets. The elements before it are kept. So is a constructed element that is empty or has a
 * faulty child. 0 with nothing added if the text is empty or has a character that is neither digit
 * nor blank, if memory ran out, and for a null pointer. */
ORVANE_API int32_t TagParsing_Parse(TagParser* parser, const char* text);

/* Gives the record of a tag.
 *
 *   parser  the parser
 *   tag     two hexadecimal digits of either case
 *   out     room for 2,050 bytes, a TagRecord; the value stands at out + 4
 *
 * Result: 1. 0 with only zeros in out if the tag is not known. 0 with out untouched for a null
 * pointer. */
ORVANE_API int32_t TagParsing_GetTag(TagParser* parser, const char* tag, char* out);

/* Frees a parser.
 *
 *   parser  the parser; null is ignored */
ORVANE_API void TagParsing_Free(TagParser* parser);

/* ---- The dictionary of tags ------------------------------------------------------------------
 *
 * The process has one list of records, kept in the file dictdata.bin in the current directory. The
 * first call that finds the file reads it, once. Only FlushTagdict writes it. From a file that ends
 * early the complete records are read. A text longer than its field is cut, and wide texts are
 * converted to the ANSI code page. Without a file the list is empty at first.
 *
 * Until a file is found, each call looks in the directory that is current then. The file's records
 * come behind those that were added before. After that no other file is read, and a flush in
 * another directory replaces the file there. Only regular files count. A file that may not be read
 * counts as none; a flush that may write it replaces it.
 *
 * Use these functions from one thread at a time.
 */

/* A record: 1,244 octets. Texts are zero-terminated, and the library does not interpret them. A
 * text that fills its field without a terminator loses its last byte. */
typedef struct TagdictData {
  char tag[20];
  char shortText[200];
  char longText[1024];
} TagdictData;

/* Copies the whole list, in its order: that of the file, then as added.
 *
 *   records  room for every record. No function tells their number beforehand. A record takes at
 *            least three octets of the file, so (size of the file - 4) / 3 records hold those of
 *            the file. Add room for the records added since
 *   count    the number of records, 0 for an empty list
 *
 * Result: 1. 0 with nothing changed if memory ran out. */
ORVANE_API int32_t GetTagdict(TagdictData* records, int32_t* count);

/* Copies the first record of a tag.
 *
 *   tag  the tag; upper and lower case are the same
 *   out  the record
 *
 * Result: 1. 0 with out untouched if no record has the tag, or memory ran out. */
ORVANE_API int32_t FindTagdictData(const char* tag, TagdictData* out);

/* Adds a record at the end of the list.
 *
 *   record  the record
 *
 * Result: 1. 0 with nothing changed if FindTagdictData would find its tag, or memory ran out. */
ORVANE_API int32_t AddTagdictData(const TagdictData* record);

/* Removes the first record with exactly this tag.
 *
 *   tag  the tag; upper and lower case count
 *
 * Result: 1. 0 with nothing changed if no record has the tag, or memory ran out. */
ORVANE_API int32_t DeleteTagdictData(const char* tag);

/* Puts a record in the place of the one with its tag.
 *
 *   record  the record
 *
 * Removes the first record with exactly this tag (upper and lower case count), if there is one.
 * Then adds this record at the end.
 *
 * Result: 1. 0 if the tag is still there after the removal, in another case, or because the file
 * had it twice. Then the record is not added, and the removed record stays removed. 0 with nothing
 * changed if memory ran out. */
ORVANE_API int32_t UpTagdictData(const TagdictData* record);

/* Writes the whole list to the file.
 *
 * Result: always 1.
 *
 * A file that can't be written stays as it was, and so does a file that failed while it was read. A
 * full disk or a file size limit does not end the process. The new file keeps the permissions of
 * the old one (but no setuid bit), its access-control list and its attributes. A link stays a link.
 *
 * The new file is written beside the old one, and then takes its place. So a process that ends in
 * the middle leaves the old or the new file, whole; the next flush removes what else it left. If
 * the folder does not allow this, the old file itself is overwritten. */
ORVANE_API int32_t FlushTagdict(void);

#ifdef __cplusplus
}
#endif

#endif
