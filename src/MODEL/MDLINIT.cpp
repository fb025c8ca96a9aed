#include "MODEL/MDLINIT.h"

#include "MATLIB/SETVEC.h"
#include "MODEL/EVENT.h"
#include "MODEL/FILE.h"
#include "MODEL/POLY.h"
#include "MODEL/SYSLIB.h"
#include "MODEL/VIEWLIB.h"

namespace quelmark {

void ModelLibrariesRegister() {
    MatrixLibraryRegister();
    PolygonRegister();
    FileLibraryRegister();
    EventRegister();
    ViewLibraryRegister();
    SystemLibraryRegister();
}

}  // namespace quelmark
