/// The log: a std::ostream with levels, per-level streams, message headers
/// and the S.../P... stream macros and F... printf macros.
///
/// Capturing log output (tests): `LogCapture cap;` routes the global log into
/// its in-memory buffer until cap is destroyed, and `cap.take()` returns the
/// text logged so far and clears it. By hand: osgLog().setLogType(LOG_BUFFER,
/// true), then osgLog().getLogBuf().take().
#ifndef _OSGLOG_H_
#define _OSGLOG_H_

#include <OpenSG/OSGBaseTypes.h>

#include <fstream>
#include <memory>
#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#ifndef OSG_LOG_MODULE
#define OSG_LOG_MODULE "OpenSG"
#endif

OSG_BEGIN_NAMESPACE

// A fixed underlying type: numbers out of range (from the environment or a
// caller) are clamped, not undefined.
enum LogLevel : Int32
{
    LOG_LOG     = 0,
    LOG_FATAL   = 1,
    LOG_WARNING = 2,
    LOG_NOTICE  = 3,
    LOG_INFO    = 4,
    LOG_DEBUG   = 5
};

enum LogType : Int32
{
    LOG_NONE   = 0,
    LOG_STDOUT = 1,
    LOG_STDERR = 2,
    LOG_FILE   = 3,
    LOG_BUFFER = 4
};

enum LogHeaderElem
{
    LOG_NONE_HEADER          = 0,
    LOG_BEGIN_NEWLINE_HEADER = 1,
    LOG_TYPE_HEADER          = 2,
    LOG_TIMESTAMP_HEADER     = 4,
    LOG_MODULE_HEADER        = 8,
    LOG_FILE_HEADER          = 16,
    LOG_LINE_HEADER          = 32,
    LOG_FUNCNAME_HEADER      = 64,
    LOG_END_NEWLINE_HEADER   = 128,
    LOG_ANSICOLOR_HEADER     = 4096,
    LOG_COLOR_HEADER         = 8192,
    LOG_TAB_HEADER           = 16384,
    LOG_ALL_HEADER           = 32767
};

/// Module filtering is not done: every module passes.
enum LogModuleHandling
{
    LOG_MODULE_NONE      = 0,
    LOG_MODULE_KNOWN     = 1,
    LOG_MODULE_UNKNOWN   = 2,
    LOG_MODULE_UNDEFINED = 4,
    LOG_MODULE_ALL       = 7
};

/// In-memory destination of a log of type LOG_BUFFER.
class LogBuf : public std::streambuf
{
  public:
    const std::string &str(void) const { return _text; }
    /// Returns the collected text and empties the buffer.
    std::string take(void);
    void        clear(void) { _text.clear(); }
    void        append(const std::string &text) { _text += text; }

  protected:
    int_type        overflow(int_type c) override;
    std::streamsize xsputn(const char *s, std::streamsize n) override;

  private:
    std::string _text;
};

class Log : public std::ostream
{
  public:
    /// Defaults as for the global log: level WARNING, header TYPE.
    explicit Log(LogType logType = LOG_STDERR, LogLevel logLevel = LOG_WARNING);
    explicit Log(const Char8 *fileName, LogLevel logLevel = LOG_WARNING);
    virtual ~Log(void);

    Log(const Log &) = delete;
    Log &operator=(const Log &) = delete;

    /// "LOG", "FATAL", "WARNING", "NOTICE", "INFO", "DEBUG".
    static const Char8 *getLevelName(LogLevel level);

    // The set... functions of the global log give way to the matching
    // OSG_LOG_... environment variable unless force is true.

    LogLevel getLogLevel(void) const { return _logLevel; }
    void     setLogLevel(LogLevel level, bool force = false);
    bool     checkLevel(LogLevel level) const { return _logLevel >= level; }

    LogType getLogType(void) const { return _logType; }
    void    setLogType(LogType logType, bool force = false);
    /// Opens the file and switches the type to LOG_FILE; false (and a line
    /// on stderr) when the file cannot be opened.
    bool    setLogFile(const Char8 *fileName, bool force = false);

    UInt32 getHeaderElem(void) const { return _headerElem; }
    void   setHeaderElem(UInt32 elemMask, bool force = false);
    void   addHeaderElem(LogHeaderElem elem, bool force = false);
    void   delHeaderElem(LogHeaderElem elem, bool force = false);
    bool   hasHeaderElem(LogHeaderElem elem) const
    {
        return (_headerElem & UInt32(elem)) != 0;
    }

    /// Timestamps in headers count seconds from the reference time.
    Time getRefTime(void) const { return _refTime; }
    void setRefTime(Time refTime) { _refTime = refTime; }
    void resetRefTime(void);

    /// The stream of a level: the destination when level <= the current
    /// level, a sink otherwise.
    std::ostream &stream(LogLevel level);
    std::ostream &nilstream(void);

    /// Writes the header of a message into the level's stream.
    std::ostream &doHeader(LogLevel level, const Char8 *module,
                           const Char8 *file, UInt32 line,
                           const Char8 *funcName);

    /// printf-style formatting straight to the destination, then a flush.
    void doLog(const Char8 *format, ...)
        __attribute__((format(printf, 2, 3)));

    void lock(void) { _mutex.lock(); }
    void unlock(void) { _mutex.unlock(); }

    /// The LOG_BUFFER destination (kept even while another type is active).
    LogBuf &getLogBuf(void) { return _logBuf; }

    /// The environment overrides applied when the global log is created, in
    /// this order: OSG_LOG_LEVEL, OSG_LOG_FILE, OSG_LOG_TYPE (the type is
    /// reset to LOG_STDERR when it is unset, so a file alone does not stick),
    /// OSG_LOG_HEADER. Each override first writes its notice to this log.
    void applyEnvironment(void);

    /// Makes the non-forced set... functions consult the environment; on
    /// for the global log.
    void setEnvironmentOverrides(bool on) { _envOverrides = on; }

    /// OSG_LOG_LEVEL text: a number (clamped to 0-5) or a level name in any
    /// case. Anything else gives LOG_DEBUG and *ok = false.
    static LogLevel parseLogLevel(const Char8 *text, bool *ok = NULL);
    /// OSG_LOG_TYPE text: none, -, stdout, stderr, file, buffer in any case,
    /// or a number n clamped to 0-5 indexing (none, stdout, stdout, stderr,
    /// file, buffer). Anything else gives LOG_STDERR and *ok = false.
    static LogType parseLogType(const Char8 *text, bool *ok = NULL);

  private:
    class NullBuf : public std::streambuf
    {
      protected:
        int_type        overflow(int_type c) override;
        std::streamsize xsputn(const char *, std::streamsize n) override
        {
            return n;
        }

      private:
        char _scratch[256];
    };

    bool levelFromEnv(void);
    bool fileFromEnv(void);
    bool typeFromEnv(void);
    bool headerFromEnv(void);

    void applyLogType(LogType logType);
    bool openFile(const Char8 *fileName);
    void connect(void);

    LogType     _logType;
    LogLevel    _logLevel;
    UInt32      _headerElem;
    Time        _refTime;
    bool        _envOverrides;

    std::filebuf  _fileBuf;
    LogBuf        _logBuf;
    NullBuf       _nullBuf;
    std::ostream  _nilStream;
    std::unique_ptr<std::ostream> _levelStreams[LOG_DEBUG + 1];

    std::vector<char>    _printBuffer;
    std::recursive_mutex _mutex;
};

/// The global log; NULL until the first use of osgLog() or a macro.
extern Log *osgLogP;

void doInitLog(void);

inline void initLog(void)
{
    if(osgLogP == NULL)
        doInitLog();
}

inline Log &osgLog(void)
{
    initLog();
    return *osgLogP;
}

/// Manipulator that ends a log line (std::endl).
inline std::ostream &endLog(std::ostream &os)
{
    return os << std::endl;
}

/// Writes indent blanks.
void indentLog(UInt32 indent, std::ostream &stream);

/// The level's stream of the global log, with the header written when
/// logHeader is set. Takes no lock.
std::ostream &osgStartLog(bool logHeader, LogLevel level, const Char8 *module,
                          const Char8 *file, UInt32 line);

/// Holds the global log's lock for one statement: the stream macros create
/// a temporary of it, so the lock lasts to the end of the full expression.
class LogStatement
{
  public:
    LogStatement(bool logHeader, LogLevel level, const Char8 *module,
                 const Char8 *file, UInt32 line, const Char8 *funcName);
    ~LogStatement(void);

    LogStatement(const LogStatement &) = delete;
    LogStatement &operator=(const LogStatement &) = delete;

    std::ostream &stream(void) const { return *_stream; }

  private:
    std::ostream *_stream;
};

/// Test aid: routes the global log into its buffer (LOG_BUFFER, forced) for
/// the guard's lifetime, then restores type, level, header and any text the
/// buffer held before.
class LogCapture
{
  public:
    LogCapture(void);
    /// Also sets the level (forced) for the guard's lifetime.
    explicit LogCapture(LogLevel level);
    ~LogCapture(void);

    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    /// The text logged since construction or the last take(); then cleared.
    std::string take(void);
    const std::string &str(void) const;

  private:
    LogType     _oldType;
    LogLevel    _oldLevel;
    UInt32      _oldHeader;
    std::string _oldText;
};

OSG_END_NAMESPACE

// --- stream macros: SWARNING << "text" << std::endl; -----------------------

#define OSG_LOG_STREAM(HEADER, LEVEL)                                         \
    ::osg::LogStatement(HEADER, LEVEL, OSG_LOG_MODULE, __FILE__, __LINE__,    \
                        OSG_FUNCNAME_MACRO)                                   \
        .stream()

#define SLOG     OSG_LOG_STREAM(true, ::osg::LOG_LOG)
#define SFATAL   OSG_LOG_STREAM(true, ::osg::LOG_FATAL)
#define SWARNING OSG_LOG_STREAM(true, ::osg::LOG_WARNING)
#define SNOTICE  OSG_LOG_STREAM(true, ::osg::LOG_NOTICE)
#define SINFO    OSG_LOG_STREAM(true, ::osg::LOG_INFO)

#define PLOG     OSG_LOG_STREAM(false, ::osg::LOG_LOG)
#define PFATAL   OSG_LOG_STREAM(false, ::osg::LOG_FATAL)
#define PWARNING OSG_LOG_STREAM(false, ::osg::LOG_WARNING)
#define PNOTICE  OSG_LOG_STREAM(false, ::osg::LOG_NOTICE)
#define PINFO    OSG_LOG_STREAM(false, ::osg::LOG_INFO)

// --- printf macros: FWARNING(("Couldn't load %s\n", name)); ----------------
// The argument is a parenthesised printf argument list; each macro is a
// brace block. FDEBUG is always compiled in and filtered by the level.

#define OSG_LOG_PRINTF(CHECK, HEADER, LEVEL, PAR)                             \
    {                                                                         \
        ::osg::initLog();                                                     \
        if(!(CHECK) || ::osg::osgLogP->checkLevel(LEVEL))                     \
        {                                                                     \
            ::osg::osgLogP->lock();                                           \
            if(HEADER)                                                        \
                ::osg::osgLogP->doHeader(LEVEL, OSG_LOG_MODULE, __FILE__,     \
                                         __LINE__, OSG_FUNCNAME_MACRO);       \
            ::osg::osgLogP->doLog PAR;                                        \
            ::osg::osgLogP->unlock();                                         \
        }                                                                     \
    }

#define FLOG(par)     OSG_LOG_PRINTF(false, true, ::osg::LOG_LOG, par)
#define FFATAL(par)   OSG_LOG_PRINTF(true, true, ::osg::LOG_FATAL, par)
#define FWARNING(par) OSG_LOG_PRINTF(true, true, ::osg::LOG_WARNING, par)
#define FNOTICE(par)  OSG_LOG_PRINTF(true, true, ::osg::LOG_NOTICE, par)
#define FINFO(par)    OSG_LOG_PRINTF(true, true, ::osg::LOG_INFO, par)
#define FDEBUG(par)   OSG_LOG_PRINTF(true, true, ::osg::LOG_DEBUG, par)

#define FPLOG(par)     OSG_LOG_PRINTF(false, false, ::osg::LOG_LOG, par)
#define FPFATAL(par)   OSG_LOG_PRINTF(true, false, ::osg::LOG_FATAL, par)
#define FPWARNING(par) OSG_LOG_PRINTF(true, false, ::osg::LOG_WARNING, par)
#define FPNOTICE(par)  OSG_LOG_PRINTF(true, false, ::osg::LOG_NOTICE, par)
#define FPINFO(par)    OSG_LOG_PRINTF(true, false, ::osg::LOG_INFO, par)
#define FPDEBUG(par)   OSG_LOG_PRINTF(true, false, ::osg::LOG_DEBUG, par)

#endif
