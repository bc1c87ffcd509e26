#pragma once

#include <QString>

namespace tarvo {

// The program folder: the folder of the running executable, with every link on the way resolved, so
// that a link to the program elsewhere (in ~/bin, say) still finds the files that lie beside it. It
// holds the programs, "tarvo32.reg", the built-in media and the fallback beep; a stored file name
// without a folder names a file there. Start-up reads it once and hands it to those who need it.
QString programFolder();

} // namespace tarvo
