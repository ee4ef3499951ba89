#include "controller/languages.h"

namespace velk::controller {
namespace {

/// One slot in every language. The texts stand as the controllers in use show them, down to the blank:
/// borrowed English, uneven centring and mixed case included.
struct SlotTexts {
  std::string_view dutch, english, french, german, portuguese, spanish;
};

// clang-format off
constexpr std::array<SlotTexts, textCount> rows{{
    {" AAN UITNEER OP ", "  ON OFFDOWN UP ", "MARCARREDESCMONT", " EIN AUSUNTEOBEN", "LIGADESLBAIXCIMA", "ENCEAPAGABAJARRI"},  // 6
    {"NROP",             "DNUP",             "DEMO",             "UNOB",             "BACI",             "ABAR"},  // 7
    {"CONTROLLER V8.01", "CONTROLLER V8.01", "CONTROLLER V8.01", "CONTROLLER V8.01", " VELK CTL  V8.01", " VELK CTL  V8.01"},  // 8
    {"   VELK READY",    "   VELK READY",    "   VELK READY",    "   VELK READY",    "  VELK PRONTO",    "  VELK LISTO"},  // 9
    {" KIES  KANAAL __", "SELECT CHANNEL__", " SELECT CANAL __", " SELECT  KANAL__", "SELECIONE CAN.__", "SELECIONAR CAN__"},  // 10
    {" SIMULATIE UIT",   "Simulation OFF",   "Simulation OFF",   "Simulation OFF",   "DESL SIMULACAO",   "SIMUL. APAGADA"},  // 11
    {" SIMULATIE AAN",   " SIMULATION ON",   " SIMULATION ON",   " SIMULATION ON",   "LIG SIMULACAO",    "SIMUL. ENCEND"},  // 12
    {"SIMULATIE RECORD", "Simulation REC",   "Simulation REC",   "Simulation REC",   "GRAVA SIMULACAO",  "GRABAR SIMULAC."},  // 13
    {" ALLES AAN",       "LOAD ALL ON",      " TOUTE MARCHE",    "LOAD ALL ON",      "CARREGA TUDO LIG", "TODO A ENCENDIDO"},  // 14
    {" ALLES UIT",       "LOAD ALL OFF",     " TOUTE ARRETE",    "LOAD ALL OFF",     "CARREGA TUDO DES", "TODO A APAGADO"},  // 15
    {" ADJUST +/-",      " ADJUST +/-",      "AJUST +/-",        " ADJUST +/-",      " AJUSTA +/-",      " AJUSTE DE +/-"},  // 16
    {"MANUEEL",          "NO CLOCK",         "MANUEL",           "KEIN KLOK",        "SEM RELO",         "NINGUN R"},  // 17
    {" VORST",           "FREEZE",           "HORS GEL",         "N. FRIER",         "GELADO",           "CONGELAD"},  // 18
    {"ECONOMY",          "ECONOMY",          "ECONOM",           "ECONOMY",          "ECONOMIC",         "ECONOMIA"},  // 19
    {"COMFORT",          "COMFORT",          "CONFORT",          "COMFORT",          "CONFORTO",         "COMFORT"},  // 20
    {" NACHT",           "NIGHT",            " NUIT",            " NACHT",           " NOITE",           " NOCHE"},  // 21
    {"KOELING",          "COOLING",          "FROID",            "KUHLUNG",          "RESFRIA",          "ENFRIANDO"},  // 22
    {" KLOKTIJD AAN",    "  SWITCHTIME ON",  "MINUTERIE MARCHE", "  KLOKZEIT ON",    "TEMPORIZADOR LIG", "TIEMPO ENCENDIDO"},  // 23
    {" MAANDAG",         " MONDAY",          " LUNDI",           " MONTAG",          "SEGUNDA F",        " LUNES"},  // 24
    {" DINSDAG",         " TUESDAY",         " MARDI",           "DIENSTAG",         " TERCA F",         " MARTES"},  // 25
    {" WOENSDAG",        "WEDNESDAY",        "MERCREDI",         "MITTWOCH",         "QUARTA F",         "MIERCOLES"},  // 26
    {" DONDERDAG",       " THURSDAY",        " JEUDI",           " DONNERSTAG",      "QUINTA F",         "JUEVES"},  // 27
    {"VRIJDAG",          " FRIDAY",          "VENDREDI",         " FREITAG",         "SEXTA F",          "VIERNES"},  // 28
    {" ZATERDAG",        " SATURDAY",        " SAMEDI",          " SAMSTAG",         " SABADO",          " SABADO"},  // 29
    {" ZONDAG",          " SUNDAY",          " DIMANCHE",        " SONNTAG",         " DOMINGO",         " DOMINGO"},  // 30
    {"  CHECK STATUS",   "  CHECK STATUS",   "  CHECK ETAT",     "  CHECK STATUS",   "VERIFICA STATUS",  "CHEQUEO ESTADO"},  // 31
    {"   STATUS OK",     "   STATUS OK",     "   ETAT OK",       "   STATUS OK",     "   STATUS OK",     "  ESTADO  OK"},  // 32
    {" EINDE SCANNING",  "  SCANNING END",   " SCANNING FIN",    " SCANNING ENDE",   "FIM DA PESQUISA",  "FINAL. BUSQUEDA"},  // 33
    {"  ZEND IR-CODE",   "  SEND IR-CODE",   " ENVOIE CODE IR",  " SENDE IR-CODE",   "ENVIA CODIGO IR",  "ENVIANDO COD.IR"},  // 34
}};
// clang-format on

constexpr Texts column(std::string_view SlotTexts::*language) {
  Texts texts;
  for (std::size_t i = 0; i < textCount; ++i) texts[i] = rows[i].*language;
  return texts;
}

/// The second Portuguese differs in the words of the first two slots alone.
constexpr Texts brazilian = [] {
  Texts texts = column(&SlotTexts::portuguese);
  texts[0] = "LIGADESLDESCSOBE";
  texts[1] = "DESO";
  return texts;
}();

struct LanguageTexts {
  std::string_view letter;
  Texts texts;
};

constexpr LanguageTexts languages[] = {
    {"N", column(&SlotTexts::dutch)},
    {"E", column(&SlotTexts::english)},
    {"F", column(&SlotTexts::french)},
    {"D", column(&SlotTexts::german)},
    {"B", brazilian},
    {"P", column(&SlotTexts::portuguese)},
    {"S", column(&SlotTexts::spanish)},
};

}  // namespace

const Texts* textsOf(std::string_view language) {
  for (const auto& [letter, texts] : languages) {
    if (letter == language) return &texts;
  }
  return nullptr;
}

}  // namespace velk::controller
