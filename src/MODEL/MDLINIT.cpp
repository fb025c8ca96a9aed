#include "MODEL/MDLINIT.h"

#include "MATLIB/SETVEC.h"
#include "MODEL/EDGE.h"
#include "MODEL/EVENT.h"
#include "MODEL/FILE.h"
#include "MODEL/POLY.h"
#include "MODEL/SYSLIB.h"
#include "MODEL/VERSET.h"
#include "MODEL/VIEWLIB.h"

namespace quelmark {

void ModelLibrariesRegister() {
    MatrixLibraryRegister();
    PolygonRegister();
    FileLibraryRegister();
    EventRegister();
    ViewLibraryRegister();
    EdgeRegister();
    VertexSetRegister();
    SystemLibraryRegister();
}

}  // namespace quelmark
