/// Test foreground: appends one entry per draw to a shared log and one per
/// GL-object callback to its own list.
#ifndef _OSGRECORDINGTESTFOREGROUND_H_
#define _OSGRECORDINGTESTFOREGROUND_H_

#include <OpenSG/OSGRecordingTestForegroundBase.h>

#include <vector>

OSG_BEGIN_NAMESPACE

class Window;

class RecordingTestForeground : public RecordingTestForegroundBase
{
  private:
    typedef RecordingTestForegroundBase Inherited;

  public:
    struct DrawCall
    {
        UInt32          tag;
        DrawActionBase *action;
        Viewport       *port;
        bool            scissor;
        Int32           scissorBox[4];
    };

    struct GLCall
    {
        Window *win;
        UInt32  id;
        UInt32  status;
    };

    /// Every draw of every instance, in call order.
    static std::vector<DrawCall> &drawLog(void);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void draw(DrawActionBase *action, Viewport *port);

    void handleGL(Window *win, UInt32 idstatus);

    std::vector<GLCall> glCalls;

  protected:
    RecordingTestForeground(void);
    RecordingTestForeground(const RecordingTestForeground &source);
    virtual ~RecordingTestForeground(void);

  private:
    friend class FieldContainer;
    friend class RecordingTestForegroundBase;

    static void initMethod(void);

    void operator=(const RecordingTestForeground &source);
};

OSG_END_NAMESPACE

#endif
