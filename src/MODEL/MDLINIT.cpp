#include "MODEL/MDLINIT.h"

#include "MATLIB/SETVEC.h"
#include "MODEL/BUTTON.h"
#include "MODEL/DLOGLIB.h"
#include "MODEL/EDGE.h"
#include "MODEL/EVENT.h"
#include "MODEL/FILE.h"
#include "MODEL/MENU.h"
#include "MODEL/PICK.h"
#include "MODEL/POLY.h"
#include "MODEL/SETDRAW.h"
#include "MODEL/SYSLIB.h"
#include "MODEL/VERSET.h"
#include "MODEL/VIEWLIB.h"

namespace quelmark {

void ModelLibrariesRegister() {
    MatrixLibraryRegister();
    PolygonRegister();
    PickLibraryRegister();
    FileLibraryRegister();
    EventRegister();
    ViewLibraryRegister();
    EdgeRegister();
    VertexSetRegister();
    SetDrawRegister();
    MenuLibraryRegister();
    DialogLibraryRegister();
    SystemLibraryRegister();
    ButtonLibraryRegister();
}

}  // namespace quelmark
