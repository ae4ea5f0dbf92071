// Where there is no window system nobody can answer a drop list: it is closed without a pick.
#include "kits/widgets/select_drop_list.h"

int Drop_List_Show(const Drop_List_Request&) {
    return DROP_LIST_NONE;
}
