// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "formkit/FtpClient/formkitftp_export.h"

#include <functional>
#include <string>
#include <string_view>

namespace nsFTP {

/// One entry of a directory listing.
class FORMKITFTP_EXPORT CFTPFileStatus
{
public:
    /// Whether the size is known, in bytes.
    enum TSizeType { sizeUnknown = 0, sizeBytes = 1 };
    /// How exact a time is: none, the server's own to the second, the server's local time to the
    /// minute, the server's local date.
    enum TTimeType { timeUnknown = 0, timeExact = 1, timeMinute = 2, timeDay = 3 };
    /// Whether there is a unique identifier.
    enum TIdType { idUnknown = 0, idFull = 1 };

    /// Back to the values that stand beside the members.
    void Reset();
    bool operator==(const CFTPFileStatus &other) const;
    bool operator!=(const CFTPFileStatus &other) const { return !(*this == other); }

    /// The bytes that the server sent, in its encoding. They are not safe as a local file name: a
    /// server may send "../x".
    std::string name;
    /// The directory that was listed, as it was asked for; set by CFTPClient, by no parser.
    std::string path;
    /// The entry may be a directory.
    bool tryCwd = false;
    /// The entry may be a file that can be downloaded. A link may be both.
    bool tryRetrieve = false;
    int sizeType = sizeUnknown;
    /// In bytes; -1 when the listing has no number.
    long long size = -1;
    int mtimeType = timeUnknown;
    /// Seconds since 1970-01-01; the server's local time taken as UTC unless the type is exact.
    long long mtime = 0;
    /// The texts of a UNIX line: permissions, owner, group, link count.
    std::string attributes;
    std::string owner;
    std::string group;
    std::string links;
    int idType = idUnknown;
    /// The unique identifier that EPLF and MLSD have.
    std::string id;
    /// The line as the server sent it, without its line end; set by CFTPClient, by no parser. Not
    /// compared.
    std::string line;
};

/// Reads one line of a directory listing.
class FORMKITFTP_EXPORT IFileListParser
{
public:
    virtual ~IFileListParser();
    /// Fills status from a line without its line end; false when the line is no entry. The
    /// status is then of no use.
    virtual bool Parse(CFTPFileStatus &status, const std::string &line) = 0;
};

/// The parser for EPLF, UNIX (ls -l), MultiNet (VMS) and MS-DOS listings.
/// - A line may have any bytes. It is no entry when a number in it does not fit, a day is not from
///   1 to 31 or a year is above 9999. A size that is no number reads as -1; an EPLF time that is
///   none leaves the time unknown.
/// - Names keep all their blanks. Only in a UNIX-style line whose first letter is followed by a
///   blank or '[', three blanks between the time and the name are left out.
class FORMKITFTP_EXPORT CFTPListParser : public IFileListParser
{
public:
    /// Gives seconds since 1970-01-01 UTC.
    using Clock = std::function<long long()>;

    /// The clock dates entries that come without a year; the system's when none is given.
    explicit CFTPListParser(Clock clock = {});

    bool Parse(CFTPFileStatus &status, const std::string &line) override;

    /// Whether a line is of a style, by its first character or, for MultiNet, by a ';' in it.
    static bool IsEPLS(std::string_view line);
    static bool IsUNIXStyleListing(std::string_view line);
    static bool IsMultiNetListing(std::string_view line);
    static bool IsMSDOSListing(std::string_view line);

    /// Each reads a line of one style. The status must have been reset before.
    bool ParseEPLF(CFTPFileStatus &status, std::string_view line) const;
    bool ParseUNIXStyleListing(CFTPFileStatus &status, std::string_view line);
    /// A line without a ';' gives true and sets nothing. The time may be followed by anything.
    bool ParseMultiNetListing(CFTPFileStatus &status, std::string_view line) const;
    /// A blank may stand before A, P, AM or PM; without these the time is of 24 hours. A year may
    /// have four digits.
    bool ParseMSDOSListing(CFTPFileStatus &status, std::string_view line) const;

    /// 0 to 11 for a three-letter English month in any case, else -1.
    static int GetMonth(const char *text, size_t length);
    /// Compares three characters, those of the first argument lowered.
    static bool CheckMonth(const char *text, const char *month);
    /// Reads a decimal number. False when there is none, when characters remain after it and
    /// when it does not fit.
    static bool GetLong(const char *text, size_t length, long &value);
    /// Seconds of a date at 00:00; month from 0 to 11, day from 1. A day past the month's end
    /// runs into the next month.
    static long long ToTAI(long year, long month, long day);
    /// The time of a date without a year: in last year if that is less than 350 days ago, else in
    /// the first later year of which that holds (a date in the future counts as less).
    long long GuessTAI(long month, long day);
    /// The year of a time.
    static long GetYear(long long seconds);

private:
    bool readDate(std::string_view month, std::string_view day, std::string_view yearOrTime,
                  CFTPFileStatus &status);

    long long m_nEpochCorrection;
    long long m_nCurrentYear = -1;
    Clock m_Clock;

    static const char *const m_Months[12];
};

} // namespace nsFTP
