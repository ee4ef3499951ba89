// Printed from VelkCom's method table and its comments; see CONTRIBUTING.md.
// VelkCom: configuration of home-automation bus controllers.
//
// The component for programs in C++11 and later, without a type library to import:
//
//     CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
//     VelkCom::Serial serial;
//     const unsigned char result = serial.OpenCom(3);
//
// A std::string carries bytes, one character each. Arguments that are written back are references, or pointers where
// they may be left out. Methods that raise a run-time error throw VelkCom::Error.
#pragma once

#include <windows.h>
// The automation types need the base types first.
#include <oleauto.h>

#include <initializer_list>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace VelkCom {

/// What a result byte says. Any other is a status that the controller gave.
enum Result : unsigned char {
  /// Done.
  ResultSuccess = 0,
  /// The serial port is not open.
  ResultPortNotOpen = 55,
  /// The serial port is already open.
  ResultPortAlreadyOpen = 56,
  /// The TCP link is not connected, or still in use.
  ResultNotConnected = 58,
  /// There is no open serial port to close.
  ResultNothingToClose = 84,
  /// Nothing was done.
  ResultNothingDone = 99,
  /// No reply or an unexpected one, or a failure without a code of its own.
  ResultOtherFailure = 100,
  /// ReadOrWrite is neither R nor W.
  ResultBadSelector = 101,
  /// A count or a number is too large.
  ResultCountTooLarge = 102,
  /// Offset is out of range.
  ResultBadOffset = 103,
  /// The data have a wrong length, or the number is not for this module.
  ResultWrongLength = 104,
  /// A value is out of range.
  ResultBadValue = 105,
  /// SerieNr does not have six characters.
  ResultBadSerialNumber = 106,
  /// The controller did not take the module request.
  ResultControllerBusy = 107,
  /// A mode is unknown or not allowed here.
  ResultBadMode = 111,
  /// An address or a field is out of range.
  ResultBadAddress = 112,
  /// The preset number is out of range.
  ResultBadPreset = 113,
  /// SourceSubAdr is out of range.
  ResultBadSubAddress = 115,
  /// INofOut is neither I nor O.
  ResultBadLinkKind = 116,
  /// The module refused the request (127).
  ResultModuleRefused127 = 127,
  /// The module refused the request (128).
  ResultModuleRefused128 = 128,
  /// What was read back differs from what was written.
  ResultReadsBackDifferent = 201,
  /// Only replies to other requests came.
  ResultNoMatchingReply = 251,
  /// No reply, or one of a wrong length.
  ResultNoReply = 252,
  /// A reply of a wrong length to a write.
  ResultWrongWriteReply = 253,
  /// A wrong echo, a bad status or a foreign reply.
  ResultEchoFault = 254,
  /// The module refused the request (255).
  ResultModuleRefused255 = 255,
};

/// The output modes by their numbers, named by the codes that Ctl_Param takes. A stored 4 is RO or DI.
enum OutputMode : unsigned char {
  ModeBI = 1,
  ModePB = 2,
  ModeDI = 3,
  ModeRO = 4,
  ModeT1 = 5,
  ModeT2 = 6,
  ModeT3 = 7,
  ModeT4 = 8,
  ModeUD = 9,
  ModeLC = 10,
  ModeRC = 11,
  ModeRS = 12,
  ModeSS = 13,
  ModeIN = 14,
  ModeTH = 15,
  ModeML = 16,
  ModeLO = 17,
  ModePS = 18,
  ModeAL = 19,
  ModeAU = 20,
  ModeT5 = 21,
};

/// A call that did not come to a result: code() is 0x800A0000 plus the number of a run-time error, or the system's own.
class Error : public std::runtime_error {
 public:
  Error(HRESULT code, const std::string& sentence) : std::runtime_error(sentence), code_(code) {}

  HRESULT code() const { return code_; }

 private:
  HRESULT code_;
};

/// A value of any type, which frees itself.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(double number) : Variant() {
    value_.vt = VT_R8;
    value_.dblVal = number;
  }
  Variant(const std::string& bytes) : Variant() {
    value_.bstrVal = SysAllocStringLen(nullptr, static_cast<UINT>(bytes.size()));
    if (value_.bstrVal == nullptr) throw std::bad_alloc();
    value_.vt = VT_BSTR;
    for (std::size_t i = 0; i < bytes.size(); ++i) value_.bstrVal[i] = static_cast<unsigned char>(bytes[i]);
  }
  Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  Variant& operator=(Variant other) noexcept {
    const VARIANT former = value_;
    value_ = other.value_;
    other.value_ = former;
    return *this;
  }
  ~Variant() { VariantClear(&value_); }

  bool isEmpty() const { return value_.vt == VT_EMPTY; }
  long number() const { return as(VT_I4).value_.lVal; }

  std::string bytes() const {
    const Variant text = as(VT_BSTR);
    std::string result;
    for (UINT i = 0; i < SysStringLen(text.value_.bstrVal); ++i) result += static_cast<char>(text.value_.bstrVal[i]);
    return result;
  }

  VARIANT& raw() { return value_; }
  const VARIANT& raw() const { return value_; }

 private:
  Variant as(VARTYPE type) const {
    Variant result;
    const HRESULT code = VariantChangeType(&result.value_, const_cast<VARIANT*>(&value_), 0, type);
    if (FAILED(code)) throw Error(code, "a value of another type came");
    return result;
  }

  VARIANT value_;
};

namespace detail {

/// What stands in a call for one argument: its value, or the place that receives what comes back.
class Argument {
 public:
  Argument(const Argument&) = delete;
  Argument& operator=(const Argument&) = delete;

  Argument(unsigned char number) {
    value_.raw().vt = VT_UI1;
    value_.raw().bVal = number;
  }
  Argument(short number) {
    value_.raw().vt = VT_I2;
    value_.raw().iVal = number;
  }
  Argument(bool truth) { setFlag(value_.raw(), truth); }
  Argument(const std::string& bytes) : value_(bytes) {}
  Argument(const Variant& value) {
    if (FAILED(VariantCopy(&value_.raw(), const_cast<VARIANT*>(&value.raw())))) throw std::bad_alloc();
  }
  Argument(unsigned char* number) { refer(number != nullptr, VT_UI1, number); }
  Argument(short* number) { refer(number != nullptr, VT_I2, number); }
  Argument(bool* truth) : truth_(truth) {
    if (truth != nullptr) setFlag(value_.raw(), *truth);
    refer(truth != nullptr, VT_BOOL, &value_.raw().boolVal);
  }
  Argument(std::string* bytes) : bytes_(bytes) {
    if (bytes != nullptr) value_ = Variant(*bytes);
    refer(bytes != nullptr, VT_BSTR, &value_.raw().bstrVal);
  }

  Argument* self() { return this; }

  const VARIANT& passed() const { return passed_.vt != VT_EMPTY ? passed_ : value_.raw(); }

  /// Takes over what the method has written back.
  void receive() {
    if (bytes_ != nullptr) *bytes_ = value_.bytes();
    if (truth_ != nullptr) *truth_ = value_.raw().boolVal != VARIANT_FALSE;
  }

 private:
  static void setFlag(VARIANT& value, bool truth) {
    value.vt = VT_BOOL;
    value.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
  }

  /// An argument that is left out is an error value of its own.
  void refer(bool given, VARTYPE type, void* place) {
    passed_.vt = given ? static_cast<VARTYPE>(VT_BYREF | type) : static_cast<VARTYPE>(VT_ERROR);
    if (given) {
      passed_.byref = place;
    } else {
      passed_.scode = DISP_E_PARAMNOTFOUND;
    }
  }

  Variant value_;
  VARIANT passed_{};
  std::string* bytes_ = nullptr;
  bool* truth_ = nullptr;
};

template <class T>
struct ResultOf;
template <>
struct ResultOf<unsigned char> {
  static unsigned char from(Variant& value) { return static_cast<unsigned char>(value.number()); }
};
template <>
struct ResultOf<short> {
  static short from(Variant& value) { return static_cast<short>(value.number()); }
};
template <>
struct ResultOf<bool> {
  static bool from(Variant& value) { return value.number() != 0; }
};
template <>
struct ResultOf<std::string> {
  static std::string from(Variant& value) { return value.bytes(); }
};
template <>
struct ResultOf<Variant> {
  static Variant from(Variant& value) { return static_cast<Variant&&>(value); }
};
template <>
struct ResultOf<void> {
  static void from(Variant&) {}
};

/// The sentence of a run-time error, in the system's code page.
inline std::string sentenceOf(EXCEPINFO& info, HRESULT code) {
  if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  const UINT length = SysStringLen(info.bstrDescription);
  std::string sentence(2 * length, '\0');
  const int size = length == 0 ? 0
                               : WideCharToMultiByte(CP_ACP, 0, info.bstrDescription, static_cast<int>(length),
                                                     &sentence[0], static_cast<int>(sentence.size()), nullptr, nullptr);
  sentence.resize(static_cast<std::size_t>(size));
  SysFreeString(info.bstrSource);
  SysFreeString(info.bstrDescription);
  SysFreeString(info.bstrHelpFile);
  return sentence.empty() ? "a call failed with code " + std::to_string(code) : sentence;
}

}  // namespace detail

/// One connection to the controller of the bus.
class Serial {
 public:
  /// Makes the component, as it is registered. The thread has called CoInitializeEx.
  Serial() {
    void* object = nullptr;
    const HRESULT code = CoCreateInstance(classId(), nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object);
    if (FAILED(code)) throw Error(code, "the component is not registered for programs of this bitness");
    object_ = static_cast<IDispatch*>(object);
  }

  /// Takes an object that there is.
  explicit Serial(IDispatch* object) : object_(object) { object_->AddRef(); }

  Serial(const Serial&) = delete;
  Serial& operator=(const Serial&) = delete;
  ~Serial() { object_->Release(); }

  static const CLSID& classId() {
    static const CLSID id = {0xDD354E3B, 0x3B0A, 0x4871, {0x81, 0xE2, 0x87, 0x9F, 0x41, 0xFB, 0x2B, 0x63}};
    return id;
  }

  /// True: the next serial transaction first sends a line break (10 ms on, 100 ms to settle) and clears this.
  bool FlgBreak() const { return call<bool>(1, DISPATCH_PROPERTYGET); }
  void FlgBreak(const bool& value) { call<void>(1, DISPATCH_PROPERTYPUT, value); }

  /// Bus address of the controller, sent in fast-mode frames; echo-mode frames carry none.
  unsigned char SerAddress() const { return call<unsigned char>(2, DISPATCH_PROPERTYGET); }
  void SerAddress(const unsigned char& value) { call<void>(2, DISPATCH_PROPERTYPUT, value); }

  /// False: echo mode, the serial interface echoes every byte. True: fast mode, whole frames at once.
  bool NoEcho() const { return call<bool>(3, DISPATCH_PROPERTYGET); }
  void NoEcho(const bool& value) { call<void>(3, DISPATCH_PROPERTYPUT, value); }

  /// True: transactions go over the socket.
  bool TCP() const { return call<bool>(4, DISPATCH_PROPERTYGET); }
  void TCP(const bool& value) { call<void>(4, DISPATCH_PROPERTYPUT, value); }

  /// The kind of Ethernet interface, from its greeting: "Q" (with login) or "S".
  std::string SoortETH() const { return call<std::string>(5, DISPATCH_PROPERTYGET); }
  void SoortETH(const std::string& value) { call<void>(5, DISPATCH_PROPERTYPUT, value); }

  /// Opens serial port `Port` (1 to 255) at `Baudrate` bit/s, 8N1, no handshake, RTS on, and waits 0.5 s for the
  /// interface. `FastCom` selects fast mode, else echo mode; it is taken over, and `TCP` cleared, even when the port
  /// does not open. Returns 0; 56 the port is already open, here or in another program; 100 there is no such port or
  /// it cannot be set to the rate.
  unsigned char OpenCom(unsigned char Port = 1, short Baudrate = 9600, bool FastCom = false) {
    return call<unsigned char>(10, DISPATCH_METHOD, Port, Baudrate, FastCom);
  }

  /// Closes the serial port. Returns 0, or 84 when none is open.
  unsigned char CloseCom() {
    return call<unsigned char>(11, DISPATCH_METHOD);
  }

  /// Connects to the Ethernet interface at a host name or address, recognises its kind by the greeting, and logs in
  /// where it asks for that. Connecting and greeting may take 1.5 s together. `PortNumber`: TCP port; for ports above
  /// 32767 the port minus 65536. `PassWord`: cut or padded with zero bytes to four; blank or left out: four zero
  /// bytes. Comes back as it was used. `RSAddress`: bus address of the controller, 2 to 99; any other value means 2.
  /// Returns 0; 252 no connection or no such greeting; 58 the socket is in use (`CloseTCP` first); else the
  /// interface's answer to the login. `TCP` is set also after a refused login.
  unsigned char OpenTCP(const std::string& IpAddress, short PortNumber, std::string* PassWord = nullptr,
      unsigned char RSAddress = 2) {
    return call<unsigned char>(12, DISPATCH_METHOD, IpAddress, PortNumber, PassWord, RSAddress);
  }

  /// Closes the socket; no setting changes. Returns 0.
  unsigned char CloseTCP() {
    return call<unsigned char>(13, DISPATCH_METHOD);
  }

  /// One request to the Ethernet interface and its reply, in the frames of the kind in `SoortETH`. `AtlPogingen`:
  /// sent to kind "Q"; here 0 means a wait of 2 s, any other value one until data come, the connection ends or
  /// midnight passes. `Functie`: 255 a controller frame, 240 the login; 241, which is answered by one byte, and
  /// others as the interface takes them. Returns what the reply carries, or one byte: 252 no reply, 254 a foreign
  /// header or length, 58 not connected, 100 a reply too short for its fields.
  std::string TranceivTcp(short Protocol, short ID, unsigned char AtlPogingen, unsigned char Functie,
      const std::string& Data) {
    return call<std::string>(14, DISPATCH_METHOD, Protocol, ID, AtlPogingen, Functie, Data);
  }

  /// One request to the controller over the open link, tried up to `AtlPogingen` times (0: three times). `AtlBytes`:
  /// command byte: bits 0 to 3 byte count minus 1, bit 4 short reply, bit 5 direction "V", bit 6 write, bit 7 a byte
  /// count of 128 or more. `Instructie`: 2 memory access; 0 a short request whose good reply is one byte 0. Fast mode
  /// only. Returns status byte and data, or one byte: 254 echo fault or bad status, 253 wrong reply length to a write
  /// (echo mode), 252 no reply or a wrong length, 251 only foreign replies. Raises 8018 when the port is not open.
  std::string TranCeiv(unsigned char AtlBytes, unsigned char DPHxram, unsigned char DPLxram, const std::string& Data,
      unsigned char AtlPogingen = 0, unsigned char Instructie = 2) {
    return call<std::string>(15, DISPATCH_METHOD, AtlBytes, DPHxram, DPLxram, Data, AtlPogingen, Instructie);
  }

  /// Reads `AtlBytes` bytes (1 to 16, 0 means 16; 144 means 16 from the high bank) at page `DPHxram`, offset
  /// `DPLxram`. `Richting` "V" selects the external memory, any other text the block area. Returns what `TranCeiv`
  /// does.
  std::string ReadCom(unsigned char AtlBytes, unsigned char DPHxram, unsigned char DPLxram,
      const std::string& Richting, unsigned char AtlPogingen = 0) {
    return call<std::string>(16, DISPATCH_METHOD, AtlBytes, DPHxram, DPLxram, Richting, AtlPogingen);
  }

  /// Writes `Data` there. Its length is not checked against `AtlBytes`. Returns the status, in fast mode over the
  /// serial line followed by "#".
  std::string WriteCom(unsigned char AtlBytes, unsigned char DPHxram, unsigned char DPLxram,
      const std::string& Richting, const std::string& Data, unsigned char AtlPogingen = 0) {
    return call<std::string>(17, DISPATCH_METHOD, AtlBytes, DPHxram, DPLxram, Richting, Data, AtlPogingen);
  }

  /// The result byte for a platform error number: 8005 gives 56, 8012 gives 84, 8018 gives 55, 40006 and 40020 give
  /// 58, any other 100.
  unsigned char ConvertErr(const Variant& ErrorNr) {
    return call<unsigned char>(20, DISPATCH_METHOD, ErrorNr);
  }

  /// Packed BCD of a number from 0 to 159; run-time error 6 above.
  unsigned char DECtoBCD(unsigned char Getal) {
    return call<unsigned char>(21, DISPATCH_METHOD, Getal);
  }

  /// Whether bit `Bitnr` of `Bytte` is 1; false for bits 8 to 29, run-time error 6 above.
  bool IfSetBit(unsigned char Bytte, unsigned char Bitnr) {
    return call<bool>(22, DISPATCH_METHOD, Bytte, Bitnr);
  }

  /// The number with leading zeros, in exactly `Lengte` characters: its last ones where it has more. The sign of a
  /// negative number is lost.
  Variant LdZr(const Variant& Getal, unsigned char Lengte) {
    return call<Variant>(23, DISPATCH_METHOD, Getal, Lengte);
  }

  /// The number of the lowest bit that is 1 among the low four; 0 when none is.
  unsigned char LowNibbleBit(unsigned char Waarde) {
    return call<unsigned char>(24, DISPATCH_METHOD, Waarde);
  }

  /// The smaller of two bytes.
  Variant Minimum(unsigned char Getal1, unsigned char Getal2) {
    return call<Variant>(25, DISPATCH_METHOD, Getal1, Getal2);
  }

  /// The number (0 to 7) of the lowest bit that is 1; empty when none is.
  Variant WhatBit(unsigned char Bytte) {
    return call<Variant>(26, DISPATCH_METHOD, Bytte);
  }

  /// The number (1 to 21) of a two-letter output mode; 0 when the text is not found. Any part of the list of codes is
  /// found and gives the nearest number.
  unsigned char ModeToNr(const std::string& ModeStr) {
    return call<unsigned char>(30, DISPATCH_METHOD, ModeStr);
  }

  /// The two-letter code of a mode number, empty outside 1 to 21. For number 4 the byte at 0x10FF minus `Address` is
  /// read to tell "RO" from "DI"; run-time error 5 when the reply is empty.
  std::string ModeToStr(unsigned char Mode, unsigned char Address) {
    return call<std::string>(31, DISPATCH_METHOD, Mode, Address);
  }

  /// Reads or writes the mode and the parameter items of output `Address` (1 to 99), which lie in the page with the
  /// output's number: the mode at offset 1, the items by mode (docs/outputs.md). `ReadOrWrite`: "R" reads; "W", "RW"
  /// and "" write. `Mode`: two-letter mode; on reading set to the one stored. `Parameters`: the items, one character
  /// each. `Aantal`: number of items, 255 for all from `Offset` on, 0 for the mode only; on reading set to the number
  /// meant. `Offset`: number of the first item. Returns 0; 99 part of a mode's code with items; 101 bad
  /// `ReadOrWrite`; 102 `Aantal`, 103 `Offset` too large; 104 wrong length, 105 wrong value in `Parameters`; 111 bad
  /// mode, on reading: the number stored is none of 1 to 21, as in an output that is not in use (`Mode` is then
  /// empty); 112 bad `Address`; else the status of the failed transaction.
  unsigned char Ctl_Param(const std::string& ReadOrWrite, unsigned char Address, std::string& Mode,
      std::string* Parameters = nullptr, short* Aantal = nullptr, unsigned char Offset = 0) {
    return call<unsigned char>(32, DISPATCH_METHOD, ReadOrWrite, Address, &Mode, Parameters, Aantal, Offset);
  }

  /// Stores infrared text `Offset` (0 to 63), cut or padded with blanks to 16 characters, in the high bank of the
  /// block area: sixteen texts to a page, from page 10 on. Texts cannot be read: "R" returns 99. Returns 0; 99; 101
  /// bad `ReadOrWrite`; 103 `Offset` above 63; else the status of the transaction.
  unsigned char Ctl_IRText(const std::string& ReadOrWrite, unsigned char Offset, const std::string& Tekst) {
    return call<unsigned char>(33, DISPATCH_METHOD, ReadOrWrite, Offset, Tekst);
  }

  /// Reads or writes the positions `Offset` + 1 to `Offset` + `Aantal` of the initialisation block: 1 to 3 settings
  /// (0x0004 to 0x0006), 4 and 5 controller bytes and 6 the kind derived from them (read only), 7 to 13 the clock as
  /// year, month, day, weekday, hours, minutes, seconds (0xFFFF down to 0xFFF9, BCD there and plain here; the weekday
  /// is 1 for Monday to 7 for Sunday, and 0 is taken too), 14 to 16 further bytes (0x0208 to 0x020A, read only). A
  /// write ends before the clock or covers positions 8 to 13; the clock then takes the last seven characters. A read
  /// that reaches position 13 appends the three further bytes. What was read before a failure stays in `Parameters`.
  /// With an `Aantal` of 0 a write transfers nothing; a read gives an empty text below `Offset` 6, nothing at 6 and
  /// the three further bytes at 13, but between them asks for what the link takes a count of 0 for: 16 bytes.
  /// `ReadOrWrite`: "R" reads; "W", "RW" and "" write. `Parameters`: the bytes; on reading replaced by those read.
  /// Returns 0; 99 nothing transferred; 101 bad `ReadOrWrite`; 102 `Offset` + `Aantal` above 16; 103 `Offset` above
  /// 13; 104 wrong length, or a part of the clock; 105 a byte out of its range; else the status of the failed
  /// transaction. A failure in the middle of setting the clock can leave it held.
  unsigned char Ctl_Init(const std::string& ReadOrWrite, std::string& Parameters, unsigned char Aantal = 13,
      unsigned char Offset = 0) {
    return call<unsigned char>(40, DISPATCH_METHOD, ReadOrWrite, &Parameters, Aantal, Offset);
  }

  /// Reads or writes the link of a source to a destination: two bytes at page `SourceAdr`, offset 31 + 2 times
  /// `SourceSubAdr`, and its flank bits in the byte at offset 254. `SourceAdr`: 0 to 124, but for 1, 2 and 100.
  /// `SourceSubAdr`: 0 to 3. `DestAdr`: output 1 to 127, group 129 to 255, or input; 0 removes an output link. On
  /// reading set. `INofOut`: "O" output or group, "I" input; on reading set. An input link reads back as address 0.
  /// `Parameters1`: on reading set to the high nibble of the second byte. `Parameters2`: on reading set to its low
  /// nibble. `HighFlank`: act on rising edges; output links only; on reading set. `LowFlank`: act on falling edges,
  /// likewise. Returns 0; 101 bad `ReadOrWrite`; 112 bad `SourceAdr`, or a link to itself; 115 bad `SourceSubAdr`;
  /// 116 bad `INofOut`; 100 a value that does not fit a byte; else the status of the failed transaction.
  unsigned char Ctl_Soft(const std::string& ReadOrWrite, unsigned char SourceAdr, unsigned char SourceSubAdr,
      unsigned char& DestAdr, std::string& INofOut, unsigned char& Parameters1, unsigned char* Parameters2 = nullptr,
      bool* HighFlank = nullptr, bool* LowFlank = nullptr) {
    return call<unsigned char>(41, DISPATCH_METHOD, ReadOrWrite, SourceAdr, SourceSubAdr, &DestAdr, &INofOut,
        &Parameters1, Parameters2, HighFlank, LowFlank);
  }

  /// Writes all 29 display texts of a language (16 bytes at offset 40 of the pages 6 to 34), then reads them back.
  /// `Taal`: "N" Dutch, "E" English, "F" French, "D" German, "B" or "P" Portuguese, "S" Spanish. Returns 0; 105 no
  /// such language; 201 a text reads back differently; else the status of the failed transaction. What was written
  /// before a failure stays.
  Variant Ctl_Lang(const std::string& Taal) {
    return call<Variant>(42, DISPATCH_METHOD, Taal);
  }

  /// Reads or writes preset `PresetNr` (1 to 92): its text (16 bytes at offset 40 of page `PresetNr` + 34), the
  /// four-byte records 3 to `MaxAdr` (block area at `DPHPreset`, `DPLPreset`), two delays and the simulation flag
  /// (page 102 + (`PresetNr` - 1) / 4). `ReadOrWrite`: "R" reads, anything else writes. `Tekst`: exactly 16
  /// characters. `MaxAdr`: number of the last record, 3 to 99. `Data`: the records, 4 bytes each; on writing one that
  /// contains a byte 1 is left as it is. `Delay1`: 5 to 200, so a write has to give it. `Delay2`: 0 for none or 5 to
  /// 200; both together at most 255. `Simulation`: on reading 255 or 0; on writing anything but 0 sets the flag.
  /// Returns 0; 104 wrong length; 105 bad delay; 112 bad `MaxAdr`; 113 bad `PresetNr`; else the status of the failed
  /// transaction.
  unsigned char Preset(const std::string& ReadOrWrite, unsigned char PresetNr, std::string& Tekst,
      unsigned char MaxAdr, std::string& Data, unsigned char* Delay1 = nullptr, unsigned char* Delay2 = nullptr,
      unsigned char* Simulation = nullptr) {
    return call<unsigned char>(50, DISPATCH_METHOD, ReadOrWrite, PresetNr, &Tekst, MaxAdr, &Data, Delay1, Delay2,
        Simulation);
  }

  /// High address byte of the records of a preset.
  unsigned char DPHPreset(unsigned char PresetNr) {
    return call<unsigned char>(51, DISPATCH_METHOD, PresetNr);
  }

  /// Low address byte of record `adres` of a preset; 0 for preset 0 and above 92; run-time error 6 above 255.
  unsigned char DPLPreset(unsigned char PresetNr, unsigned char adres) {
    return call<unsigned char>(52, DISPATCH_METHOD, PresetNr, adres);
  }

  /// Reads or writes the recorded events of a weekday (0 Monday to 6 Sunday) and hour (0 to 23): five-byte records
  /// closed by 255, in the high bank of the block area, page `Weekday` * 36 + the hour in BCD. `ReadOrWrite`: "R"
  /// reads, anything else writes. `Data`: the records. On a write their first two bytes are turned into BCD and the
  /// end mark is appended in the caller's own text. Returns 0; 105 bad weekday or hour; 100 a value without BCD; else
  /// the status of the failed transaction.
  unsigned char Simulation(const std::string& ReadOrWrite, unsigned char Weekday, unsigned char Uur,
      std::string& Data) {
    return call<unsigned char>(53, DISPATCH_METHOD, ReadOrWrite, Weekday, Uur, &Data);
  }

  /// Reads or writes switch-time block `BlokNummer` (0 to 127), page `BlokNummer` + 128, from offset 200 on.
  /// `ReadOrWrite`: "R" reads, anything else writes. `Dagen`: day selection, bit 0 Monday to bit 6 Sunday. `Uur`:
  /// hour, taken modulo 24. `Minuten`: minute, modulo 60. All three 0 clear the block. `Data`: two bytes (101 to 124,
  /// 1 to 4), or entries of three bytes whose first is 3 or more; empty for a block without action, whose day
  /// selection is lost. Returns 0; 104 wrong length; 105 a value out of its range; 100 a block or place that does not
  /// exist, or a stored time that is not BCD; else the status of the failed transaction.
  unsigned char SwitchTime(const std::string& ReadOrWrite, unsigned char BlokNummer, unsigned char& Dagen,
      unsigned char& Uur, unsigned char& Minuten, std::string& Data) {
    return call<unsigned char>(54, DISPATCH_METHOD, ReadOrWrite, BlokNummer, &Dagen, &Uur, &Minuten, &Data);
  }

  /// The module type of a six-digit serial number: 4, 5 or 7 for the prefixes that share a type, the prefix itself
  /// for some, the prefix modulo 8 for the rest. Any text gives a number.
  short ModuleType(const std::string& SerieNr) {
    return call<short>(60, DISPATCH_METHOD, SerieNr);
  }

  /// Reads or writes the configuration record of module `SerieNr` (six digits) through the mailbox at 0x0000, in
  /// pieces of at most 16 bytes. Lengths and checks by module type: docs/modules.md. `ReadOrWrite`: "R" reads,
  /// anything else writes. `Data`: the record. A read that is refused before it gets to the record (an identification
  /// that fails, 106) leaves the former value; one that fails later leaves what it has read so far. `Offset`: number
  /// of the first piece; grows by 1 for a known model and by 1 for each piece. `ModType`: model name; a known one on
  /// entry is kept, whatever the module reports. `CPUtype`: CPU type. `FWVersie`: firmware version, four digits;
  /// "1.0" with 090250 to 090270. Returns 0; 99 an error before any other code, or no piece answered; 100 no or a
  /// strange reply; 103 `Offset` too large, 104 wrong length, 105, 111, 112 a value in `Data` out of range; 106
  /// `SerieNr` is not six characters; 107 the controller did not take the request; 127, 128, 255 the module's own
  /// code; else the status of the failed transaction. A run-time error behind the first piece (an unplugged adapter)
  /// ends with the code of the piece before it, which is 0: `Offset` tells how far it went.
  unsigned char Module(const std::string& ReadOrWrite, const std::string& SerieNr, std::string& Data,
      unsigned char* Offset = nullptr, std::string* ModType = nullptr, unsigned char* CPUtype = nullptr,
      std::string* FWVersie = nullptr) {
    return call<unsigned char>(61, DISPATCH_METHOD, ReadOrWrite, SerieNr, &Data, Offset, ModType, CPUtype, FWVersie);
  }

  /// Reads model name, CPU type and firmware version of a module, for `Module` to hand on, and finds out whether its
  /// model is known. Returns 0, also for modules that have none; 100 no reply; 107 the controller did not take the
  /// request; 127, 128, 255 the module's own code; else the status of the failed transaction.
  unsigned char RXModuleVersie(const std::string& SerieNr) {
    return call<unsigned char>(62, DISPATCH_METHOD, SerieNr);
  }

  /// A record with its channel masks turned into the numbers 1 to 4, as `Module` does after reading.
  std::string ConvertRXData(const std::string& SerieNr, const std::string& Data) {
    return call<std::string>(63, DISPATCH_METHOD, SerieNr, Data);
  }

  /// A record with its numbers 0 to 4 turned into channel masks, as `Module` does before writing. Run-time error 6
  /// for a larger number, 5 for data too short.
  std::string ConvertTXData(const std::string& SerieNr, const std::string& Data) {
    return call<std::string>(64, DISPATCH_METHOD, SerieNr, Data);
  }

  /// One mask turned into a number, at `Positie` (from 1). Run-time error 5 for a position outside the data.
  Variant ConvertRXSub(const std::string& Data, unsigned char Positie) {
    return call<Variant>(65, DISPATCH_METHOD, Data, Positie);
  }

  /// One number turned into a mask, at `Positie` (from 1). Run-time errors as `ConvertTXData`.
  Variant ConvertTXSub(const std::string& Data, unsigned char Positie) {
    return call<Variant>(66, DISPATCH_METHOD, Data, Positie);
  }

  /// Turns the first two bytes of each five-byte record from BCD into numbers, in `Data` itself, and returns it.
  /// Run-time error 13 for a byte that is not BCD.
  std::string ConvertSim(std::string& Data) {
    return call<std::string>(67, DISPATCH_METHOD, &Data);
  }

  /// Reads or writes sample `SampleNr` (0 to 239) in bank `BankAofB` (0 or 1) of a module, through the long-record
  /// buffer. Numbers up to 253 are let through; as no request can name them, they end with 99, behind the blocks of a
  /// write. `Data`: up to 128 bytes; empty after a failed read. Returns 0; 99 an error before any other code; 102,
  /// 104 bad `SampleNr` or length; 106 `SerieNr` is not six characters; else the status of a transaction, the trigger
  /// or the module's reply code.
  unsigned char Sample(const std::string& ReadOrWrite, const std::string& SerieNr, unsigned char SampleNr,
      unsigned char BankAofB, std::string& Data) {
    return call<unsigned char>(68, DISPATCH_METHOD, ReadOrWrite, SerieNr, SampleNr, BankAofB, &Data);
  }

  /// Reads (64 bytes) or writes text record `Offset` of a GSM module, through the long-record buffer. `Data`: the
  /// text. Keeps its former value when none was read, also with the result 0 that a trigger gives which reads 0
  /// behind a bad status or comes without its byte: docs/modules.md. Returns 0; 99 an error; 100 no or a strange
  /// reply; 127, 128, 255 the module's own code; else the status of a transaction or the trigger.
  unsigned char GSMtext(const std::string& ReadOrWrite, const std::string& SerieNr, unsigned char Offset,
      std::string& Data) {
    return call<unsigned char>(69, DISPATCH_METHOD, ReadOrWrite, SerieNr, Offset, &Data);
  }

 private:
  template <class T, class... Arguments>
  T call(DISPID id, WORD kind, const Arguments&... arguments) const {
    return invoke<T>(id, kind, {detail::Argument(arguments).self()...});
  }

  template <class T>
  T invoke(DISPID id, WORD kind, std::initializer_list<detail::Argument*> arguments) const {
    std::vector<VARIANT> passed;  // in reverse order, as the system wants them
    for (auto argument = arguments.end(); argument != arguments.begin();) passed.push_back((*--argument)->passed());
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters = {passed.data(), nullptr, static_cast<UINT>(passed.size()), 0};
    if (kind == DISPATCH_PROPERTYPUT) {
      parameters.rgdispidNamedArgs = &put;
      parameters.cNamedArgs = 1;
    }
    Variant result;
    EXCEPINFO info = {};
    const HRESULT code =
        object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, &result.raw(), &info, nullptr);
    for (detail::Argument* argument : arguments) argument->receive();
    if (code == DISP_E_EXCEPTION) {
      const HRESULT raised = info.scode;
      throw Error(raised, detail::sentenceOf(info, raised));
    }
    if (FAILED(code)) throw Error(code, "a call failed with code " + std::to_string(code));
    return detail::ResultOf<T>::from(result);
  }

  IDispatch* object_;
};

}  // namespace VelkCom
