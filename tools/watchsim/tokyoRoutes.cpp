#include "tools/watchsim/tokyoRoutes.h"

#include <array>

namespace {

// Once round the Imperial Palace from Sakuradamon, counterclockwise as everybody runs there.
constexpr std::array palace{
    Place{35'677'300, 139'752'700}, Place{35'677'900, 139'756'300}, Place{35'679'300, 139'759'400},
    Place{35'682'300, 139'761'700}, Place{35'685'800, 139'762'700}, Place{35'688'800, 139'761'100},
    Place{35'691'200, 139'758'300}, Place{35'690'700, 139'754'800}, Place{35'689'500, 139'751'600},
    Place{35'689'600, 139'748'600}, Place{35'687'900, 139'746'000}, Place{35'685'200, 139'743'700},
    Place{35'682'000, 139'743'800}, Place{35'679'300, 139'744'900}, Place{35'677'700, 139'748'000},
    Place{35'676'800, 139'750'600}};

// Down the terraces of the Sumida from Azumabashi to Kachidoki.
constexpr std::array sumida{
    Place{35'710'500, 139'798'000}, Place{35'707'900, 139'796'500}, Place{35'704'100, 139'794'000},
    Place{35'700'400, 139'792'300}, Place{35'697'100, 139'790'400}, Place{35'693'600, 139'788'200},
    Place{35'689'300, 139'788'500}, Place{35'685'700, 139'790'200}, Place{35'682'400, 139'790'900},
    Place{35'678'900, 139'788'700}, Place{35'675'700, 139'786'300}, Place{35'671'800, 139'784'400},
    Place{35'668'500, 139'781'600}, Place{35'665'200, 139'777'400}, Place{35'662'300, 139'774'100}};

// Along the Arakawa from Senju to Kasai.
constexpr std::array arakawa{
    Place{35'754'300, 139'806'600}, Place{35'749'100, 139'812'600}, Place{35'742'900, 139'818'100},
    Place{35'737'200, 139'823'600}, Place{35'731'100, 139'829'100}, Place{35'724'600, 139'834'600},
    Place{35'718'300, 139'840'000}, Place{35'711'300, 139'844'500}, Place{35'703'600, 139'848'100},
    Place{35'695'500, 139'850'900}, Place{35'687'000, 139'852'000}, Place{35'678'500, 139'851'600},
    Place{35'670'000, 139'850'300}, Place{35'661'500, 139'849'600}, Place{35'653'000, 139'849'400}};

// The wide path round the middle of Yoyogi Park.
constexpr std::array yoyogi{Place{35'669'600, 139'699'500}, Place{35'671'900, 139'698'900},
                            Place{35'673'900, 139'697'200}, Place{35'674'900, 139'694'700},
                            Place{35'674'100, 139'692'500}, Place{35'672'200, 139'691'600},
                            Place{35'670'000, 139'692'200}, Place{35'668'300, 139'693'900},
                            Place{35'667'700, 139'696'500}, Place{35'668'200, 139'698'600}};

// The jogging course of Komazawa Olympic Park.
constexpr std::array komazawa{Place{35'628'400, 139'660'100}, Place{35'629'000, 139'662'900},
                              Place{35'628'300, 139'665'600}, Place{35'626'500, 139'667'000},
                              Place{35'624'500, 139'666'400}, Place{35'623'200, 139'664'300},
                              Place{35'622'900, 139'661'600}, Place{35'623'900, 139'659'300},
                              Place{35'625'600, 139'658'500}, Place{35'627'200, 139'658'900}};

// Round Odaiba by the beach, the west promenade and the Symbol Promenade.
constexpr std::array odaiba{
    Place{35'630'600, 139'776'800}, Place{35'629'600, 139'774'300}, Place{35'627'900, 139'772'000},
    Place{35'625'300, 139'770'700}, Place{35'622'400, 139'771'600}, Place{35'620'000, 139'773'800},
    Place{35'618'300, 139'776'900}, Place{35'617'600, 139'780'300}, Place{35'619'400, 139'783'000},
    Place{35'622'000, 139'782'400}, Place{35'624'400, 139'780'300}, Place{35'626'700, 139'779'200},
    Place{35'629'000, 139'778'900}};

constexpr std::array routes{
    Route{"KOKYO", true, 3, 31, palace},      Route{"SUMIDA", false, 2, 6, sumida},
    Route{"YOYOGI", true, 30, 39, yoyogi},    Route{"ARAKAWA", false, 1, 7, arakawa},
    Route{"KOMAZAW", true, 34, 40, komazawa}, Route{"ODAIBA", true, 2, 9, odaiba}};

}  // namespace

std::span<const Route> tokyoRoutes() {
  return routes;
}
