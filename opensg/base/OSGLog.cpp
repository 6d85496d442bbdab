#include <OpenSG/OSGLog.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <strings.h>

OSG_BEGIN_NAMESPACE

Log *osgLogP = NULL;

namespace
{

const Char8 *const LevelNames[] = {"LOG",    "FATAL", "WARNING",
                                   "NOTICE", "INFO",  "DEBUG"};

std::mutex &initMutex(void)
{
    static std::mutex m;
    return m;
}

// Creates the global log when the library is loaded, so that it exists
// before any second thread can race for it. initLog() still covers static
// initialisers of other libraries that run earlier.
struct EagerLogInit
{
    EagerLogInit(void) { initLog(); }
} eagerLogInit;

} // namespace

// --- LogBuf ------------------------------------------------------------------

std::string LogBuf::take(void)
{
    std::string text;
    text.swap(_text);
    return text;
}

LogBuf::int_type LogBuf::overflow(int_type c)
{
    if(!traits_type::eq_int_type(c, traits_type::eof()))
        _text.push_back(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
}

std::streamsize LogBuf::xsputn(const char *s, std::streamsize n)
{
    _text.append(s, size_t(n));
    return n;
}

// --- Log -----------------------------------------------------------------------

Log::NullBuf::int_type Log::NullBuf::overflow(int_type c)
{
    // Give single characters a scratch area to land in, over and over.
    setp(_scratch, _scratch + sizeof(_scratch));
    return traits_type::not_eof(c);
}

Log::Log(LogType logType, LogLevel logLevel)
    : std::ostream(NULL),
      _logType(logType),
      _logLevel(logLevel),
      _headerElem(LOG_TYPE_HEADER),
      _refTime(0),
      _envOverrides(false),
      _nilStream(&_nullBuf),
      _printBuffer(1024)
{
    for(UInt32 i = 0; i <= LOG_DEBUG; ++i)
        _levelStreams[i].reset(new std::ostream(&_nullBuf));
    resetRefTime();
    connect();
}

Log::Log(const Char8 *fileName, LogLevel logLevel) : Log(LOG_NONE, logLevel)
{
    setLogFile(fileName, true);
}

Log::~Log(void)
{
    flush();
    if(_fileBuf.is_open())
        _fileBuf.close();
}

const Char8 *Log::getLevelName(LogLevel level)
{
    if(level < LOG_LOG || level > LOG_DEBUG)
        return "";
    return LevelNames[level];
}

void Log::setLogLevel(LogLevel level, bool force)
{
    if(!force && _envOverrides && levelFromEnv())
        return;

    if(level < LOG_LOG)
        level = LOG_LOG;
    if(level > LOG_DEBUG)
        level = LOG_DEBUG;
    _logLevel = level;
    connect();
}

void Log::setLogType(LogType logType, bool force)
{
    if(!force && _envOverrides && typeFromEnv())
        return;
    applyLogType(logType);
}

bool Log::setLogFile(const Char8 *fileName, bool force)
{
    if(!force && _envOverrides && fileFromEnv())
        return _logType == LOG_FILE;
    return openFile(fileName);
}

void Log::setHeaderElem(UInt32 elemMask, bool force)
{
    if(!force && _envOverrides && headerFromEnv())
        return;
    _headerElem = elemMask;
}

void Log::addHeaderElem(LogHeaderElem elem, bool force)
{
    setHeaderElem(_headerElem | UInt32(elem), force);
}

void Log::delHeaderElem(LogHeaderElem elem, bool force)
{
    setHeaderElem(_headerElem & ~UInt32(elem), force);
}

void Log::resetRefTime(void)
{
    _refTime = getSystemTime();
}

std::ostream &Log::stream(LogLevel level)
{
    if(level < LOG_LOG || level > LOG_DEBUG)
        return _nilStream;
    return *_levelStreams[level];
}

std::ostream &Log::nilstream(void)
{
    return _nilStream;
}

std::ostream &Log::doHeader(LogLevel level, const Char8 *module,
                            const Char8 *file, UInt32 line,
                            const Char8 *funcName)
{
    std::ostream &s = stream(level);
    if(_headerElem == 0)
        return s;

    const Char8 *sep = (_headerElem & LOG_TAB_HEADER) ? "\t" : ": ";

    if(_headerElem & LOG_BEGIN_NEWLINE_HEADER)
        s << '\n';
    if(_headerElem & LOG_TYPE_HEADER)
        s << getLevelName(level) << sep;
    if(_headerElem & LOG_TIMESTAMP_HEADER)
        s << (getSystemTime() - _refTime) << sep;
    if(_headerElem & LOG_MODULE_HEADER)
        s << (module != NULL ? module : "") << sep;
    if(_headerElem & LOG_FILE_HEADER)
    {
        s << (file != NULL ? file : "");
        if(_headerElem & LOG_LINE_HEADER)
            s << ':' << line;
        s << sep;
    }
    else if(_headerElem & LOG_LINE_HEADER)
    {
        s << line << sep;
    }
    if(_headerElem & LOG_FUNCNAME_HEADER)
        s << (funcName != NULL ? funcName : "") << sep;

    if(_headerElem & LOG_END_NEWLINE_HEADER)
        s << '\n';
    else
        s << ' ';
    return s;
}

void Log::doLog(const Char8 *format, ...)
{
    if(format == NULL)
        return;

    va_list args;
    va_start(args, format);
    va_list retry;
    va_copy(retry, args);

    int n = std::vsnprintf(_printBuffer.data(), _printBuffer.size(), format,
                           args);
    if(n >= 0 && size_t(n) >= _printBuffer.size())
    {
        // The buffer only ever grows, so long messages pay this once.
        _printBuffer.resize(size_t(n) + 1);
        n = std::vsnprintf(_printBuffer.data(), _printBuffer.size(), format,
                           retry);
    }
    va_end(retry);
    va_end(args);

    if(n > 0)
        write(_printBuffer.data(), n);
    flush();
}

LogLevel Log::parseLogLevel(const Char8 *text, bool *ok)
{
    if(ok != NULL)
        *ok = true;

    if(text != NULL)
    {
        Char8 *end = NULL;
        long   n   = std::strtol(text, &end, 10);
        if(end != text)
            return LogLevel(n < 0 ? 0L : (n > 5 ? 5L : n));

        static const Char8 *const names[] = {"log",    "fatal", "warning",
                                             "notice", "info",  "debug"};
        for(Int32 i = 0; i <= LOG_DEBUG; ++i)
            if(strcasecmp(text, names[i]) == 0)
                return LogLevel(i);
    }

    if(ok != NULL)
        *ok = false;
    return LOG_DEBUG;
}

LogType Log::parseLogType(const Char8 *text, bool *ok)
{
    if(ok != NULL)
        *ok = true;

    if(text != NULL)
    {
        // Numbers index this table, in which 1 and 2 both mean stdout.
        static const LogType byNumber[] = {LOG_NONE,   LOG_STDOUT, LOG_STDOUT,
                                           LOG_STDERR, LOG_FILE,   LOG_BUFFER};
        Char8 *end = NULL;
        long   n   = std::strtol(text, &end, 10);
        if(end != text)
            return byNumber[n < 0 ? 0 : (n > 5 ? 5 : n)];

        static const struct
        {
            const Char8 *name;
            LogType      type;
        } names[] = {{"none", LOG_NONE},     {"-", LOG_STDOUT},
                     {"stdout", LOG_STDOUT}, {"stderr", LOG_STDERR},
                     {"file", LOG_FILE},     {"buffer", LOG_BUFFER}};
        for(const auto &entry : names)
            if(strcasecmp(text, entry.name) == 0)
                return entry.type;
    }

    if(ok != NULL)
        *ok = false;
    return LOG_STDERR;
}

bool Log::levelFromEnv(void)
{
    const Char8 *env = std::getenv("OSG_LOG_LEVEL");
    if(env == NULL)
        return false;

    *this << "OSGLog::setLogLevel: overriden by envvar OSG_LOG_LEVEL '" << env
          << "'." << std::endl;

    bool     ok;
    LogLevel level = parseLogLevel(env, &ok);
    if(!ok)
        *this << "Log::setLogLevel: couldn't interpret envvar, set to "
                 "LOG_DEBUG!"
              << std::endl;

    _logLevel = level;
    connect();
    return true;
}

bool Log::fileFromEnv(void)
{
    const Char8 *env = std::getenv("OSG_LOG_FILE");
    if(env == NULL)
        return false;

    *this << "Log::setLogFile: overriden by envvar OSG_LOG_FILE '" << env
          << "'." << std::endl;
    openFile(env);
    return true;
}

bool Log::typeFromEnv(void)
{
    const Char8 *env = std::getenv("OSG_LOG_TYPE");
    if(env == NULL)
        return false;

    *this << "Log::setLogType: overriden by envvar OSG_LOG_TYPE '" << env
          << "'." << std::endl;

    bool    ok;
    LogType logType = parseLogType(env, &ok);
    if(!ok)
        *this << "Log::setLogType: couldn't interpret envvar, set to "
                 "LOG_STDERR!"
              << std::endl;

    applyLogType(logType);
    return true;
}

bool Log::headerFromEnv(void)
{
    const Char8 *env = std::getenv("OSG_LOG_HEADER");
    if(env == NULL)
        return false;

    *this << "Log::setHeaderElem: overriden by envvar OSG_LOG_HEADER '" << env
          << "'." << std::endl;
    _headerElem = UInt32(std::atoi(env));
    return true;
}

void Log::applyEnvironment(void)
{
    levelFromEnv();
    fileFromEnv();
    if(!typeFromEnv())
        applyLogType(LOG_STDERR);
    headerFromEnv();
}

void Log::applyLogType(LogType logType)
{
    if(logType < LOG_NONE || logType > LOG_BUFFER)
        logType = LOG_STDERR;
    _logType = logType;
    connect();
}

bool Log::openFile(const Char8 *fileName)
{
    if(fileName == NULL)
        return false;

    flush();
    if(_fileBuf.is_open())
        _fileBuf.close();

    if(_fileBuf.open(fileName, std::ios::out | std::ios::trunc) == NULL)
    {
        std::cerr << "Log::setLogFile: couldn't open '" << fileName << "'"
                  << std::endl;
        connect();
        return false;
    }

    _logType = LOG_FILE;
    connect();
    return true;
}

void Log::connect(void)
{
    std::streambuf *dest = &_nullBuf;
    switch(_logType)
    {
        case LOG_STDOUT:
            dest = std::cout.rdbuf();
            break;
        case LOG_STDERR:
            dest = std::cerr.rdbuf();
            break;
        case LOG_FILE:
            if(_fileBuf.is_open())
                dest = &_fileBuf;
            break;
        case LOG_BUFFER:
            dest = &_logBuf;
            break;
        default:
            break;
    }

    flush();
    rdbuf(dest);
    for(UInt32 i = 0; i <= LOG_DEBUG; ++i)
    {
        _levelStreams[i]->flush();
        _levelStreams[i]->rdbuf(i <= UInt32(_logLevel) ? dest : &_nullBuf);
    }
}

// --- global log ------------------------------------------------------------------

void doInitLog(void)
{
    std::lock_guard<std::mutex> guard(initMutex());
    if(osgLogP != NULL)
        return;

    Log *log = new Log(LOG_STDERR, LOG_WARNING);
    log->setHeaderElem(LOG_TYPE_HEADER, true);
    log->applyEnvironment();
    log->setEnvironmentOverrides(true);
    osgLogP = log;
}

void indentLog(UInt32 indent, std::ostream &stream)
{
    for(UInt32 i = 0; i < indent; ++i)
        stream << ' ';
}

std::ostream &osgStartLog(bool logHeader, LogLevel level, const Char8 *module,
                          const Char8 *file, UInt32 line)
{
    Log &log = osgLog();
    if(logHeader)
        return log.doHeader(level, module, file, line, NULL);
    return log.stream(level);
}

LogStatement::LogStatement(bool logHeader, LogLevel level, const Char8 *module,
                           const Char8 *file, UInt32 line,
                           const Char8 *funcName)
{
    Log &log = osgLog();
    log.lock();
    _stream = logHeader ? &log.doHeader(level, module, file, line, funcName)
                        : &log.stream(level);
}

LogStatement::~LogStatement(void)
{
    osgLogP->unlock();
}

// --- LogCapture --------------------------------------------------------------------

LogCapture::LogCapture(void)
{
    Log &log   = osgLog();
    _oldType   = log.getLogType();
    _oldLevel  = log.getLogLevel();
    _oldHeader = log.getHeaderElem();
    _oldText   = log.getLogBuf().take();
    log.setLogType(LOG_BUFFER, true);
}

LogCapture::LogCapture(LogLevel level) : LogCapture()
{
    osgLog().setLogLevel(level, true);
}

LogCapture::~LogCapture(void)
{
    Log        &log  = osgLog();
    std::string rest = log.getLogBuf().take();

    log.setLogType(_oldType, true);
    log.setLogLevel(_oldLevel, true);
    log.setHeaderElem(_oldHeader, true);

    // Give the buffer back its earlier text; an enclosing capture also gets
    // whatever was logged here and not taken.
    log.getLogBuf().append(_oldText);
    if(_oldType == LOG_BUFFER)
        log.getLogBuf().append(rest);
}

std::string LogCapture::take(void)
{
    return osgLog().getLogBuf().take();
}

const std::string &LogCapture::str(void) const
{
    return osgLog().getLogBuf().str();
}

OSG_END_NAMESPACE
