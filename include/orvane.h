/*
 * Orvane: runs a card-script language one statement at a time, drives card readers of many makes
 * behind one interface, and converts between octets and text.
 *
 * How the calls go together: RunScript turns a statement into a code and a text. Where the text is
 * a finished command, the host sends it with SendCommand and puts what later statements should see
 * into variables with SetVarValue. The script engine never touches a reader by itself.
 *
 * Rules for all functions:
 *  - Texts are zero-terminated bytes. The engine's own messages are UTF-8. Names of readers, in and
 *    out, and paths of log files are in the ANSI code page on Windows; elsewhere they are the bytes
 *    that the maker's library or the system knows, and the listed names of ReaderKindTcp are in the
 *    locale's character set. All other texts are bytes that nobody converts.
 *  - Every buffer belongs to the caller and is only used during the call. No function is told the
 *    size of an output buffer: its description says how much room it needs.
 *  - Pointers are not checked; unless its description says otherwise they must not be null.
 *  - Hexadecimal text is two digits an octet, high digit first. It is written in upper case without
 *    separators, and read in either case with blanks (0x20) skipped. Names of variables, of script
 *    commands and in FindTagdictData are the same in either case, a to z alone; all other texts,
 *    names of readers as well, keep theirs apart.
 *  - There are no threads and, but for the log files, no locks. Use the script functions from one
 *    thread at a time, and the reader functions from one thread at a time.
 *  - A maker's library or a crypto module that calls back while it runs, on the same thread, is
 *    refused: RunScript gives ScriptException and the empty text, a reader function 0 (SendCommand
 *    with the empty text), and nothing changes. The other functions work there too.
 *  - Areas of one call don't overlap. These alone may begin at the same place: script and result of
 *    RunScript, cmdHex and respHex of SendCommand, text and output of URLDecode, AsciiToHex,
 *    ASCII2UTF_8 and UTF_82ASCII, stampText and out of GetTimeStrFromTimeStampStr.
 *  - A thread that is cancelled inside a function (POSIX) ends the process. Fork while no thread is
 *    inside one: the child has its own variables and dictionary, but shares the connections of open
 *    readers with its parent, and should leave these to it.
 *  - Once loaded, the library stays in the process, with its variables and open readers, also when
 *    a host unloads it.
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
 *   $ anything              a line for the host, handed back by its code alone
 *   ; or / and anything     a comment
 *
 * Operands stand side by side, and their values are joined. %NAME is a variable, and
 * @name(argument, ...) is a command. Any other word stands for itself, but one that begins with $
 * or =, and an @ word without "(", count for nothing: 00 $AA gives 00. Names of variables and
 * commands are the same in either case.
 *
 * A command fails if an argument fails or is empty, if it can't take a key, data or a mask, without
 * memory or crypto module, with a value above 16 MiB, and inside 128 other commands. A failed
 * command leaves a message or nothing. The arguments that it has not read are operands of the
 * statement, which goes on and keeps its code.
 *
 * So a text with code 1 may hold a message, in upper case like the rest:
 * `00B0VAR "%X" NOT DEFINE `. The host must look at the characters, and send commands alone:
 * hexadecimal digits throughout, whole octets, four at least. What unread arguments leave may look
 * like a command too. Scripts should compare the length of what they have computed.
 */

/* What a statement turned out to be: the codes of RunScript for a statement that ran to its end.
 * Where an argument fails, the text of 2, 3 and 8 is what the argument left: @setreader(%X) with an
 * undefined %X gives 2 and the message. */
enum StatementKind {
  KindAssignment = 0, /* stored; text: the stored value. Also a statement of blanks alone */
  KindExpression = 1, /* text: the operands' values joined, in upper case */
  KindSetReader = 2,  /* @setreader(reader); text: the argument */
  KindSetSlot = 3,    /* @setslot(slot); text: the argument */
  KindReset = 4,      /* @reset(); text: empty when it stands alone */
  KindDollar = 5,     /* the statement begins with $; nothing of it was evaluated; text: empty */
  KindStop = 6,       /* @stop(); text: empty when it stands alone */
  KindCompare = 7,    /* @compare(left, right, expected); text: "1" as expected, "0" not */
  KindOpenReader = 8  /* @OPENREADER(reader); text: the argument */
};

/* The other codes of RunScript, SetVarValue and GetVarValue. Code 1 of RunScript is also a failure
 * of the statement in these cases:
 *  - The statement begins with "(", ")" or ",". The text is empty.
 *  - An operand names an undefined variable. The text is the message `var "%NAME" not define ` with
 *    its last blank. No finished expression can have its lower case.
 *  - Memory ran out for an operand. The text is empty. A command that memory ran out for has failed
 *    itself, and the statement has not. */
enum ScriptCode {
  ScriptNoEngine = -1,      /* out of memory for the engine; the next call tries again */
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
 * ScriptException and the empty text, but for an assignment: it stores the whole value and hands
 * over its first 511 bytes.
 *
 * A command that sets one of the kinds 2 to 8, even inside an argument, ends the statement behind
 * the operand that it stands in. No later operand is evaluated, and nothing is stored. The text is
 * what the operands up to there gave, in its own case; in an assignment it is empty. Such a command
 * should stand alone. */
ORVANE_API int32_t RunScript(const char* script, char* result);

/* Stores a value under a name.
 *
 *   name   the name of the variable. The % of a script's variable is part of it: a script reads
 *          SetVarValue("%SW", "9000") as %SW
 *   value  the value; it is stored whole and in its own case
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
 * To read a value, run the name of the variable as a statement. */
ORVANE_API int32_t GetVarValue(const char* name);

/* ---- Readers ---------------------------------------------------------------------------------
 *
 * Sixteen readers can be open side by side, numbered 0 to 15. SetReader picks the one that the
 * other functions mean. The card slot is another number: which card interface inside that reader.
 *
 * Order of calls: SetReader if the reader is not the current one; OpenReader or OpenReaderA;
 * ChangeSlot if the reader has several card interfaces; Reset; SendCommand any number of times;
 * CloseReader. The functions give 1 for success and 0 for failure, with no further code. They block
 * for as long as the reader maker's library does.
 */

/* What stands behind a reader: the library of this name. Its file is NAME.dll on Windows and
 * libNAME.so elsewhere. It is looked for by the bare name first, then in the folder that this
 * library was loaded from; WD's is looked for in that folder alone. Unless it is WD's, a library
 * that the host has already loaded, by its own name or its file's, is the one that is used. */
enum ReaderKind {
  ReaderKindTyUsb = 1,    /* tykeyint.dll */
  ReaderKindTyCom = 2,    /* tyreader.dll */
  ReaderKindPcsc = 3,     /* winscard.dll: any PC/SC reader */
  ReaderKindWd = 4,       /* wdcrwx.dll */
  ReaderKindD8 = 5,       /* dcrf32.dll */
  ReaderKindFm8201 = 6,   /* no library and no reader: never opens, and answers commands with "" */
  ReaderKindS5009 = 7,    /* S5009.dll */
  ReaderKindS5009Ats = 8, /* S5009.dll; Reset gives the ATS */
  ReaderKindTcp = 10,     /* a payment HSM; its name is IPv4-ADDRESS:PORT */
  ReaderKindIcr = 11,     /* sdtapi.dll: identity cards */
  ReaderKindBsit = 12     /* STJZZ_BSIT.dll */
};

/* One line of a reader list: 272 octets, back to back, without gaps. */
typedef struct ReaderInfo {
  int32_t kind;     /* as the driver reports it: ReaderKindS5009 for both S5009 kinds */
  int32_t hasPort;  /* 1: port is a port number. 0: the reader is known by its name alone */
  int32_t port;     /* for OpenReader, but for the kinds 10 and 11; 0 if hasPort is 0 */
  char name[256];   /* zero-terminated; for OpenReaderA, but for kind 10, whose listed names open
                       nothing: an address does */
  int32_t reserved; /* 0 */
} ReaderInfo;

/* Lists the readers of one kind.
 *
 *   kind   a ReaderKind
 *   list   room for max records if max is above 0 and the kind honours it (1, 2, 3, 7, 8, 11), else
 *          for count + 1 records or 16, whichever is more. 32 records hold every list with a count
 *          of at most 31 and a max of at most 32
 *   count  how many ports to offer, for the kinds whose ports can't be asked for (2, 5, 7, 8, 10,
 *          11); 5 and 10 stop at 16 records, 5 and 11 add one record for their USB reader
 *   max    the most records wanted, if above 0; 3 takes 16 otherwise
 *
 * Result: the number of records written; 0 for a kind that does not exist. The kinds 1, 3 and 12
 * ask their library, and give 0 when it can't be had; the others list the same ports with and
 * without it.
 *
 * Open readers are not disturbed. Kind 0, which no reader has, may list the kind listed before.
 *
 * ReaderKindTyUsb lists a key by its index in the library's table, from 0 on. Opening hands the
 * library one less than the number in the name or the port: where the library opens by the same
 * index, the key listed as USB0 opens as USB1. */
ORVANE_API int32_t GetReaderList(int32_t kind, ReaderInfo* list, int32_t count, int32_t max);

/* Makes one of the sixteen readers the current one.
 *
 *   index  the number of the reader, 0 to 15
 *
 * Result: 1, or 0 if index is above 15: nothing has changed. */
ORVANE_API int32_t SetReader(uint32_t index);

/* Opens the current reader by port.
 *
 *   port  the port, as GetReaderList gives it
 *   kind  a ReaderKind
 *   baud  the baud rate. No driver reads it: pass 9600
 *
 * Result: 1 for success, 0 for failure.
 *
 * Opening a kind other than the one in place closes what was open first; opening the same kind
 * again does not. A kind that does not exist empties the place and gives 0. Do that with -1: a
 * driver whose kind never opened may count as kind 0, and stays.
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
 * A PC/SC reader opens without a card; Reset then finds a card that comes later. All else is as
 * with OpenReader. */
ORVANE_API int32_t OpenReaderA(const char* name, int32_t kind);

/* Closes the current reader.
 *
 * Result: 1 if it is closed now, even if it was closed before. 0 if no open call has put a driver
 * in the place, or if the library of kind 4 or 11 refuses. Kind 11 asks its library in every call.
 *
 * A card in a PC/SC reader is left as it is. */
ORVANE_API int32_t CloseReader(void);

/* Brings up the card and gives its ATR (ISO/IEC 7816-3).
 *
 *   atrHex  room for 1,025 characters: the ATR as hexadecimal text, zero-terminated; the empty text
 *           for a reader without ATR. Untouched when the result is 0
 *
 * Result: 1 for success, 0 for failure.
 *
 * On ReaderKindPcsc it reads the ATR and resets nothing: a verified PIN, the selected application
 * and open keys outlast it, and a close and open as well. What ends them is to pull the card, or
 * outside this library PC/SC's SCardReconnect with SCARD_UNPOWER_CARD, before OpenReaderA.
 *
 * ReaderKindWd gives the reply to the command 00 12 00 00 00 instead of an ATR, with its status
 * word. */
ORVANE_API int32_t Reset(char* atrHex);

/* Chooses the card slot of the current reader.
 *
 *   slotHex  hexadecimal text, of which the first two characters count: "0C" is slot 12, "1" is
 *            slot 16. What a slot means is up to the reader
 *
 * On a reader that was never opened it does nothing. */
ORVANE_API void ChangeSlot(const char* slotHex);

/* Sends a command APDU (ISO/IEC 7816-4) to the card and gives its response.
 *
 *   cmdHex   hexadecimal text of at most 8,192 characters. Pass digits alone. Any character that is
 *            neither digit nor blank ends the text, and zeros go out for what is left, also for
 *            what blanks take away: 00A4Z40000 goes out as 00A4000000, which selects the MF
 *   hexLen   the length of cmdHex in characters. Half of it, rounded down, is the number of octets
 *            sent. Below 0 counts as 0
 *   respHex  room for 8,193 characters; zero-terminated and written in every case
 *
 * Result: 1 on status word 9000. A status word 61xx is followed up with one GET RESPONSE; data in
 * front of 61xx are dropped when it succeeds. After success the kinds 3, 5 and 12 give the data
 * without the status word, or 9000 where there is no data; the kinds 4, 7 and 8 give the data and
 * the status word; 1 and 2 give what their library replied, perhaps nothing. The kinds 6, 10 and 11
 * have no status word: 10 gives 1 and what came, 6 and 11 give 1 and the empty text.
 *
 * Errors: With any other status word the result is 0 and respHex holds the first two octets of the
 * reply: that word, if no data stands before it; 0000 if the kinds 1, 2 and 4 had no reply, as 1
 * and 2 have none when closed. The result is 0 and respHex is empty when there was no answer, and
 * for a hexLen above 8,192.
 *
 * A command with an extended length goes out where its reader takes that many octets. An answer has
 * at most 256 octets, the status word among them but for the kinds 1 and 2; at most 128 for 7 and
 * 8, and 4,096 for 10. */
ORVANE_API int32_t SendCommand(const char* cmdHex, int32_t hexLen, char* respHex);

/* ---- Conversions -----------------------------------------------------------------------------
 *
 * In these names Hex stands for octets and Ascii or HexStr for their hexadecimal text. None of them
 * writes a terminator: clear the buffer first where a terminated text is wanted. A count or length
 * below 1 stands for no octets and no text.
 */

/* Escapes every byte but ASCII letters and digits as %XX (RFC 3986).
 *
 *   text  the text
 *   out   room for three times the length of text; the length written is not told */
ORVANE_API void URLEncode(const char* text, char* out);

/* Undoes URLEncode, and turns a + into a blank.
 *
 *   text  the escaped text
 *   out   room for the length of text; the length written is not told
 *
 * Escapes are not validated: a digit 0-9 counts as its value, any other character as its code less
 * 55, and the low eight bits of (first * 16) | second are the byte. So upper-case digits are right
 * in both places, lower-case ones in the first only. A % with fewer than two characters behind it
 * stands for itself, and so do those characters. */
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
 * Result: 1, or 0 on a character that is neither digit nor blank: what stands before it is written.
 * An odd last digit becomes a high half. */
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
 *   text    the hexadecimal text, most significant digit first. An odd last digit does not count. A
 *           text with blanks reads as if zeros stood behind it to length / 2 octets
 *   value   the number
 *   length  the length of text in characters, 2 to 9
 *
 * Result: 1, or 0 with value untouched on a bad character or another length. */
ORVANE_API int32_t HexStrToInt(const char* text, int32_t* value, int32_t length);

/* Gives the number that octets form.
 *
 *   octets  the octets, most significant first
 *   value   the number
 *   count   the number of octets, 1 to 4
 *
 * Result: 1, or 0 with value untouched on any other count. */
ORVANE_API int32_t HexToInt(const unsigned char* octets, int32_t* value, int32_t count);

/* Gives the significant octets of a number.
 *
 *   out    four octets: those of value, most significant first, stand at the right-hand end, from
 *          out + 4 - *count on. The bytes before them are untouched
 *   value  the number
 *   count  the number of octets, 1 to 4
 *
 * Result: always 1. */
ORVANE_API int32_t IntToHex(unsigned char* out, int32_t value, int32_t* count);

/* Gives the significant octets of a number as hexadecimal text.
 *
 *   out     room for eight characters: the digits stand from out[0] on
 *   value   the number
 *   length  the number of digits: 2, 4, 6 or 8
 *
 * Result: always 1. */
ORVANE_API int32_t IntToHexStr(char* out, int32_t value, int32_t* length);

/* ---- Character sets --------------------------------------------------------------------------
 *
 * UTF-8 (RFC 3629) and the system's narrow character sets: on Windows the ANSI and the OEM code
 * page, two different ones; elsewhere both are the character set of the environment's locale
 * (LC_ALL, LC_CTYPE, LANG), or UTF-8 if that is C or POSIX. They are looked up in every call, and
 * the process's own locale is left alone.
 *
 * What does not map is replaced as Windows does it; elsewhere a byte becomes U+FFFD and a character
 * becomes a question mark. Only the converted bytes are written, without a terminator, and their
 * number is not told: clear the buffer first.
 *
 * These two functions, and no others, throw: a C++ exception with out untouched. It is a
 * std::runtime_error with one of the texts "Invalid UTF-8 sequence." (the system has no translation
 * for the text), "Error in conversion." (any other failure) and "La falla!" (the system gave more
 * or less than it had announced), or std::bad_alloc. To catch it, build the host with the library's
 * compiler and, where that is MSVC, with /EHs. A host in another language can't catch it.
 */

/* Converts from the ANSI code page to UTF-8.
 *
 *   text  the text
 *   out   room for three times the length of text. One character set takes more (TSCII, for Tamil):
 *         there the text ends behind the last character that fits
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
 * A stamp counts seconds in 32 bits from 1970-01-01 08:00:00. The clock is read in UTC and no time
 * zone is ever applied, so a stamp is 28800 less than the Unix time of the same moment. It lasts
 * until 2106-02-07 06:28:15; the highest 28800 stamps are the first hours of 1970.
 *
 * Times are written as YYYY-MM-DD hh:mm:ss. Each text is followed by zeros to the end of its room.
 * withMs asks for milliseconds if it is 1; any other value does not.
 */

/* Gives the stamp of the present second.
 *
 *   stamp  the stamp */
ORVANE_API void GetTimeStampInt(uint32_t* stamp);

/* Gives the present stamp in decimal.
 *
 *   out     room for 14 bytes; of a longer text, negative and with milliseconds, the first 13
 *   withMs  1: the three digits of the milliseconds stand behind the stamp
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
 * Either number may have blanks and a sign before it, ends at the first character that is no digit,
 * and counts modulo 2^32; the milliseconds modulo 2^16. */
ORVANE_API void GetTimeStrFromTimeStampStr(char* out, const char* stampText, int32_t withMs);

/* ---- Log files -------------------------------------------------------------------------------
 *
 * These append to a file that the caller names, and create it if it is missing. Nothing is added,
 * neither time nor line end. The file is open only during the call. If it can't be opened, nothing
 * is written and nothing is reported. One lock in the process serves both functions, so they may be
 * called from any thread, and every entry stays whole, also where other processes append to the
 * same file.
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
 * A tag parser takes BER-TLV data (ISO/IEC 8825-1, as ISO/IEC 7816-4 uses it) apart and keeps the
 * value of each tag. Take one with TagParsing_Init, parse any number of texts, ask for any number
 * of tags, and give it back with TagParsing_Free. Use each parser from one thread at a time.
 *
 * Tags have one octet: a first octet whose low five bits are all set (9F 36, BF 0C, FF) is refused.
 * Lengths have the short form or the long form with one to four octets; the indefinite form is
 * refused. 00 is an ordinary tag: no filler may stand between the elements. A constructed element
 * is kept whole and its children are kept beside it, under their own tags; it may not be empty. Of
 * elements with the same tag the last one counts, in reading order, a parent before its children.
 */
typedef struct TagParser TagParser;

/* What is known under a tag: 2,050 octets. */
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
 * Result: 1 if the whole text was parsed. What it finds takes the place of what was known under the
 * same tags.
 *
 * Errors: 0 on the first element that is malformed, refused, longer than the text or longer than
 * 1,023 octets: what stands before it is kept, and so is a constructed element whose children, or
 * lack of them, are the fault. 0 with nothing added when the text is empty or has a character that
 * is neither digit nor blank, when memory ran out, and for a null pointer. */
ORVANE_API int32_t TagParsing_Parse(TagParser* parser, const char* text);

/* Hands over the record of a tag.
 *
 *   parser  the parser
 *   tag     two digits of either case
 *   out     room for 2,050 bytes, a TagRecord; the value stands at out + 4
 *
 * Result: 1, or 0 with zeros alone in out if the tag is not known. A null pointer gives 0 and
 * writes nothing. */
ORVANE_API int32_t TagParsing_GetTag(TagParser* parser, const char* tag, char* out);

/* Gives a parser back.
 *
 *   parser  the parser; null is ignored */
ORVANE_API void TagParsing_Free(TagParser* parser);

/* ---- The dictionary of tags ------------------------------------------------------------------
 *
 * One list of records for the process, kept in the file dictdata.bin in the current directory. The
 * first call that finds the file reads it, once; only FlushTagdict writes it. A file that ends
 * early gives the records that are complete, a text longer than its field is cut to fit, and wide
 * texts turn into the ANSI code page. Without a file the list begins empty.
 *
 * Until a file is found, each call looks in the directory that is current then; its records come
 * behind those that were added before. After that no other is read, and a flush in another
 * directory puts the list in the place of the file there. Only regular files count. One that may
 * not be read counts as none, and is replaced by a flush that may write it.
 *
 * Use these functions from one thread at a time.
 */

/* A record: 1,244 octets. Texts are zero-terminated and mean nothing to the library; one that fills
 * its field without a terminator loses its last byte. */
typedef struct TagdictData {
  char tag[20];
  char shortText[200];
  char longText[1024];
} TagdictData;

/* Copies the whole list, in its order: that of the file, then as added.
 *
 *   records  room for every record; there is no other way to ask for their number. A record takes
 *            three octets of the file at least: (size of the file - 4) / 3 records hold those of
 *            the file, and those added since come on top
 *   count    the number of records, 0 for an empty list
 *
 * Result: 1; 0 when memory runs out, with nothing changed. */
ORVANE_API int32_t GetTagdict(TagdictData* records, int32_t* count);

/* Copies the first record of a tag.
 *
 *   tag  the tag; upper and lower case are the same
 *   out  the record
 *
 * Result: 1, or 0 with out untouched: no record has the tag, or memory ran out. */
ORVANE_API int32_t FindTagdictData(const char* tag, TagdictData* out);

/* Adds a record at the end of the list.
 *
 *   record  the record
 *
 * Result: 1, or 0 with nothing changed if FindTagdictData would find its tag, or memory ran out. */
ORVANE_API int32_t AddTagdictData(const TagdictData* record);

/* Removes the first record with exactly this tag.
 *
 *   tag  the tag; upper and lower case count
 *
 * Result: 1, or 0 with nothing changed: no record has the tag, or memory ran out. */
ORVANE_API int32_t DeleteTagdictData(const char* tag);

/* Puts a record in the place of the one with its tag.
 *
 *   record  the record
 *
 * Removes the first record with exactly this tag, upper and lower case counting, if there is one,
 * and adds this one at the end.
 *
 * Result: 1. 0 if the tag is still there after the removal, in another case or, from a file that
 * held it twice, in the same: the record is not added, and what was removed stays so. 0 when memory
 * runs out, with nothing changed. */
ORVANE_API int32_t UpTagdictData(const TagdictData* record);

/* Writes the whole list to the file.
 *
 * Result: always 1.
 *
 * A file that can't be written, or one that is there and failed while it was read, stays as it was,
 * and a full disk or a file size limit ends no process. The new file keeps the old one's
 * permissions (but no setuid bit), access-control list and attributes, and a link stays a link.
 *
 * A process that ends in the middle leaves the old file or the new one, whole, wherever a new file
 * may stand beside the old one and take its place; what else it left there, the next flush removes.
 * Where the folder forbids that, the file itself is overwritten. */
ORVANE_API int32_t FlushTagdict(void);

#ifdef __cplusplus
}
#endif

#endif
