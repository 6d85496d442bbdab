// What the probe plug-ins record, shared by the plug-ins and the tests. A
// probe's context is one ProbeState from malloc; _shutdown marks it and the
// test frees it, so it can be read after the library is closed.
#ifndef _PROBESTATE_H_
#define _PROBESTATE_H_

struct ProbeState
{
    int   draws;
    int   boxes;
    int   shutdowns;
    const void *lastAction;
    float color[3];  // "color": the quad's colour
    float min[3];    // "min", "max": what _getBBox reports
    float max[3];
    char  calls[256]; // "name=value;" for every accepted parameter
};

#endif
