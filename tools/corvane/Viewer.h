/// The interactive viewer of the main program: a volume and a mesh in a
/// GLUT window, turned with the mouse through a SimpleSceneManager, with
/// keys for the shading style and the traversal, and frame times printed.
#ifndef _CORVANE_VIEWER_H_
#define _CORVANE_VIEWER_H_

namespace corvane
{

/// `corvane view [VOLUME] [--mesh FILE] [--tf FILE] [options]`: argv holds
/// the words after "view". Returns the program's exit code; every error is
/// one "corvane view: ..." line on standard error.
int viewCommand(int argc, char **argv);

} // namespace corvane

#endif
