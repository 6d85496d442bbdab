#include <OpenSG/OSGBinaryDataHandler.h>
#include <OpenSG/OSGLog.h>

#include <algorithm>
#include <cstdlib>

OSG_BEGIN_NAMESPACE

BinaryDataHandler::BinaryDataHandler(UInt32 zeroCopyThreshold, bool networkOrder) :
    _zeroCopyThreshold(zeroCopyThreshold),
    _networkOrder(networkOrder),
    _readError(false),
    _currentReadBuffer(),
    _currentReadBufferPos(0),
    _currentWriteBuffer(),
    _currentWriteBufferPos(0)
{
    _currentReadBuffer  = _readBuffers.end();
    _currentWriteBuffer = _writeBuffers.end();
}

BinaryDataHandler::~BinaryDataHandler(void)
{
}

void BinaryDataHandler::put(const void *src, UInt32 size)
{
    const UInt8 *data = static_cast<const UInt8 *>(src);

    if(_zeroCopyThreshold == 1)
    {
        // direct I/O: everything goes straight to the sink
        write(const_cast<MemoryHandle>(data), size);
        return;
    }
    if(_currentWriteBuffer != _writeBuffers.end() &&
       size < _currentWriteBuffer->_size - _currentWriteBufferPos)
    {
        // the common case: a value that fits the current buffer
        memcpy(_currentWriteBuffer->_mem + _currentWriteBufferPos, data, size);
        _currentWriteBufferPos += size;
        _currentWriteBuffer->_dataSize = _currentWriteBufferPos;
        return;
    }
    while(size > 0)
    {
        if(_currentWriteBuffer == _writeBuffers.end())
        {
            pushBuffer();
            if(_currentWriteBuffer == _writeBuffers.end())
            {
                SWARNING << "BinaryDataHandler::put: no write buffer" << std::endl;
                return;
            }
        }
        UInt32 room = _currentWriteBuffer->_size - _currentWriteBufferPos;
        UInt32 n    = std::min(room, size);
        memcpy(_currentWriteBuffer->_mem + _currentWriteBufferPos, data, n);
        _currentWriteBufferPos += n;
        _currentWriteBuffer->_dataSize = _currentWriteBufferPos;
        data += n;
        size -= n;
        if(_currentWriteBufferPos == _currentWriteBuffer->_size)
        {
            ++_currentWriteBuffer;
            _currentWriteBufferPos = 0;
            if(_currentWriteBuffer != _writeBuffers.end())
                _currentWriteBuffer->_dataSize = 0;
        }
    }
}

void BinaryDataHandler::putAndFree(MemoryHandle src, UInt32 size)
{
    put(src, size);
    delete[] src;
}

void BinaryDataHandler::get(void *dst, UInt32 size)
{
    UInt8 *data = static_cast<UInt8 *>(dst);

    if(_zeroCopyThreshold == 1)
    {
        read(data, size);
        return;
    }
    while(size > 0)
    {
        if(_currentReadBuffer == _readBuffers.end())
        {
            if(!_readError)
                pullBuffer();
            if(_currentReadBuffer == _readBuffers.end())
            {
                // the source ran dry: the rest reads as zeros and the
                // handler remembers the error for the caller to check
                _readError = true;
                memset(data, 0, size);
                return;
            }
        }
        UInt32 avail = _currentReadBuffer->_dataSize - _currentReadBufferPos;
        UInt32 n     = std::min(avail, size);
        memcpy(data, _currentReadBuffer->_mem + _currentReadBufferPos, n);
        _currentReadBufferPos += n;
        data += n;
        size -= n;
        if(_currentReadBufferPos == _currentReadBuffer->_dataSize)
        {
            ++_currentReadBuffer;
            _currentReadBufferPos = 0;
        }
    }
}

void BinaryDataHandler::getAndAlloc(MemoryHandle &src, UInt32 size)
{
    src = new UInt8[size];
    get(src, size);
}

void BinaryDataHandler::putValue(const bool &value)
{
    UInt8 b = value ? 1 : 0;
    put(&b, 1);
}

void BinaryDataHandler::getValue(bool &value)
{
    UInt8 b = 0;
    get(&b, 1);
    value = (b != 0);
}

void BinaryDataHandler::getValue(Real16 &value)
{
    UInt16 bits = 0;
    getSwapped(bits);
    value.setBits(bits);
}

void BinaryDataHandler::putValue(const std::string &value)
{
    UInt32 len = UInt32(strlen(value.c_str())) + 1;
    putValue(len);
    put(value.c_str(), len);
}

void BinaryDataHandler::getValue(std::string &value)
{
    UInt32 len = 0;
    getValue(len);
    if(len == 0)
    {
        value.erase();
        return;
    }
    // read in pieces so that a corrupt length cannot ask for gigabytes at once
    std::string tmp;
    char chunk[1024];
    while(len > 0)
    {
        UInt32 n = std::min<UInt32>(len, sizeof(chunk));
        get(chunk, n);
        tmp.append(chunk, n);
        len -= n;
    }
    value.assign(tmp.c_str()); // characters after an embedded NUL are lost
}

void BinaryDataHandler::putValues(const bool *value, UInt32 size)
{
    for(UInt32 i = 0; i < size; ++i)
        putValue(value[i]);
}

void BinaryDataHandler::getValues(bool *value, UInt32 size)
{
    for(UInt32 i = 0; i < size; ++i)
        getValue(value[i]);
}

void BinaryDataHandler::putValues(const std::string *value, UInt32 size)
{
    for(UInt32 i = 0; i < size; ++i)
        putValue(value[i]);
}

void BinaryDataHandler::getValues(std::string *value, UInt32 size)
{
    for(UInt32 i = 0; i < size; ++i)
        getValue(value[i]);
}

void BinaryDataHandler::flush(void)
{
    if(_zeroCopyThreshold == 1)
        return;
    if(_currentWriteBuffer != _writeBuffers.begin() || _currentWriteBufferPos != 0)
    {
        // close the buffers that hold data, drop the rest from this round
        BuffersT::iterator end = _currentWriteBuffer;
        if(end != _writeBuffers.end() && _currentWriteBufferPos != 0)
            ++end;
        for(BuffersT::iterator it = end; it != _writeBuffers.end(); ++it)
            it->_dataSize = 0;
        writeBuffer();
    }
    _currentWriteBuffer    = _writeBuffers.begin();
    _currentWriteBufferPos = 0;
    for(BuffersT::iterator it = _writeBuffers.begin(); it != _writeBuffers.end(); ++it)
        it->_dataSize = 0;
}

void BinaryDataHandler::forceCopy(void)
{
    _zeroCopyThreshold = 0;
}

void BinaryDataHandler::forceDirectIO(void)
{
    _zeroCopyThreshold = 1;
}

void BinaryDataHandler::writeBufAdd(MemoryHandle mem, UInt32 size, UInt32 dataSize)
{
    _writeBuffers.push_back(MemoryBlock(mem, size, dataSize));
    _currentWriteBuffer    = _writeBuffers.begin();
    _currentWriteBufferPos = 0;
}

void BinaryDataHandler::readBufAdd(MemoryHandle mem, UInt32 size, UInt32 dataSize)
{
    _readBuffers.push_back(MemoryBlock(mem, size, dataSize));
    _currentReadBuffer    = _readBuffers.end();
    _currentReadBufferPos = 0;
}

void BinaryDataHandler::writeBufClear(void)
{
    _writeBuffers.clear();
    _currentWriteBuffer    = _writeBuffers.end();
    _currentWriteBufferPos = 0;
}

void BinaryDataHandler::readBufClear(void)
{
    _readBuffers.clear();
    _currentReadBuffer    = _readBuffers.end();
    _currentReadBufferPos = 0;
}

void BinaryDataHandler::read(MemoryHandle, UInt32)
{
    SWARNING << "BinaryDataHandler::read(MemoryHandle, UInt32) called" << std::endl;
}

void BinaryDataHandler::write(MemoryHandle, UInt32)
{
    SWARNING << "BinaryDataHandler::write(MemoryHandle, UInt32) called" << std::endl;
}

void BinaryDataHandler::writeBuffer(void)
{
    UInt32 total = 0;
    for(BuffersT::iterator it = _writeBuffers.begin(); it != _writeBuffers.end(); ++it)
        total += it->_dataSize;
    UInt32 size = osghtonl(total);
    write(reinterpret_cast<MemoryHandle>(&size), sizeof(size));
    for(BuffersT::iterator it = _writeBuffers.begin(); it != _writeBuffers.end(); ++it)
        if(it->_dataSize != 0)
            write(it->_mem, it->_dataSize);
}

void BinaryDataHandler::readBuffer(void)
{
    UInt32 size = 0;
    read(reinterpret_cast<MemoryHandle>(&size), sizeof(size));
    size = osgntohl(size);
    for(BuffersT::iterator it = _readBuffers.begin(); it != _readBuffers.end(); ++it)
    {
        UInt32 n = std::min(size, it->_size);
        if(n != 0)
            read(it->_mem, n);
        it->_dataSize = n;
        size -= n;
    }
    if(size != 0)
        _readError = true;
}

void BinaryDataHandler::pushBuffer(void)
{
    if(_currentWriteBuffer == _writeBuffers.end() && !_writeBuffers.empty())
        writeBuffer();
    _currentWriteBuffer    = _writeBuffers.begin();
    _currentWriteBufferPos = 0;
    for(BuffersT::iterator it = _writeBuffers.begin(); it != _writeBuffers.end(); ++it)
        it->_dataSize = 0;
}

void BinaryDataHandler::pullBuffer(void)
{
    readBuffer();
    _currentReadBuffer    = _readBuffers.begin();
    _currentReadBufferPos = 0;
    // skip buffers that received nothing
    while(_currentReadBuffer != _readBuffers.end() && _currentReadBuffer->_dataSize == 0)
        ++_currentReadBuffer;
}

OSG_END_NAMESPACE
