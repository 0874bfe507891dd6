#include "com/type_library_tables.h"

namespace av::test {

namespace {

constexpr auto I4 = Type::integer;
constexpr auto OLE = Type::colour;
constexpr auto BOOLEAN_ = Type::boolean;
constexpr USHORT in = PARAMFLAG_FIN;
constexpr USHORT result = PARAMFLAG_FOUT | PARAMFLAG_FRETVAL;

}  // namespace

const std::vector<Property> viewProperties = {
    {L"VisualizationType", 5, I4},
    {L"VisualizationSmooth", 6, BOOLEAN_},
    {L"BackColor", 10, OLE},
    {L"GridColor", 11, OLE},
    {L"ScaleColor", 12, OLE},
    {L"TextColor", 13, OLE},
    {L"BorderColor", 14, OLE},
    {L"LineColor", 15, OLE, Access::indexed},
    {L"ScaleXVisible", 20, BOOLEAN_},
    {L"ScaleYVisible", 21, BOOLEAN_},
    {L"ScaleFont", 22, Type::font, Access::byReference},
    {L"ScaleYMin", 23, I4},
    {L"ScaleYMax", 24, I4},
    {L"GridVisible", 25, BOOLEAN_},
    {L"DynamicRange", 30, I4},
    {L"BorderType", 31, I4},
    {L"FFTWindowSize", 40, I4},
    {L"FFTWindowType", 41, I4},
    {L"FFTViewType", 42, I4},
};

const std::vector<Property> meterProperties = {
    {L"LineType", 7, I4},           {L"LineInterval", 8, I4},        {L"LineCount", 9, I4},
    {L"BackColor", 11, OLE},        {L"BorderColor", 13, OLE},       {L"LineLowColor", 14, OLE},
    {L"LineMidColor", 15, OLE},     {L"LineHighColor", 16, OLE},     {L"BackLineLowColor", 17, OLE},
    {L"BackLineMidColor", 18, OLE}, {L"BackLineHighColor", 19, OLE}, {L"TickDelayTime", 30, I4},
    {L"TickReleaseTime", 31, I4},   {L"TickVisible", 32, BOOLEAN_},  {L"SpotHeight", 33, I4},
    {L"SpotInterval", 34, I4},      {L"MidPoint", 35, I4},           {L"HighPoint", 36, I4},
    {L"AlignmentY", 40, I4},        {L"AlignmentX", 41, I4},         {L"BorderType", 45, I4},
    {L"BorderWidth", 46, I4},       {L"AutoRepaint", 50, BOOLEAN_},  {L"AutoSize", 51, BOOLEAN_},
    {L"FFTWindowSize", 60, I4},     {L"FFTWindowType", 61, I4},      {L"FFTViewType", 62, I4},
};

const std::vector<Property> analyserProperties = {
    {L"ScaleXVisible", 6, BOOLEAN_},
    {L"ScaleYVisible", 7, BOOLEAN_},
    {L"ScaleYMax", 8, I4},
    {L"ScaleYMin", 9, I4},
    {L"FFTLength", 10, I4},
    {L"BackColor", 11, OLE},
    {L"BackLineHighColor", 12, OLE},
    {L"BackLineMidColor", 13, OLE},
    {L"BackLineLowColor", 14, OLE},
    {L"LineHighColor", 15, OLE},
    {L"LineMidColor", 16, OLE},
    {L"LineLowColor", 17, OLE},
    {L"MidPoint", 18, I4},
    {L"HighPoint", 19, I4},
    {L"LineInterval", 20, I4},
    {L"SpotInterval", 21, I4},
    {L"SpotHeight", 22, I4},
    {L"LineCount", 23, I4},
    {L"TickVisible", 24, BOOLEAN_},
    {L"DynamicRange", 25, I4},
    {L"ScaleFont", 26, Type::font, Access::byReference},
    {L"ScaleColor", 27, OLE},
    {L"BorderColor", 28, OLE},
    {L"BorderType", 29, I4},
    {L"FFTWindowType", 30, I4},
    {L"FFTWindowCount", 31, I4, Access::readOnly},
    {L"FFTWindowName", 32, Type::text, Access::readOnly},
    {L"HasWindowParam", 33, BOOLEAN_, Access::readOnly},
    {L"FFTWindowParam", 34, Type::real},
    {L"AutoRepaint", 35, BOOLEAN_},
    {L"XScaleType", 36, I4},
    {L"TickColor", 37, OLE},
    {L"AlignmentX", 38, I4},
    {L"AlignmentY", 39, I4},
    {L"ViewType", 40, I4},
    {L"AutoSize", 41, BOOLEAN_},
};

const std::vector<Function> templateFunctions = {
    {L"_OnTimer", 0xaae61, INVOKE_FUNC, {}, FUNCFLAG_FHIDDEN},
    {L"SendAudioData", 0xaae62, INVOKE_FUNC, {{L"AudioData", Type::unknown, in}}},
    {L"Repaint", 0xaae63, INVOKE_FUNC, {}},
    {L"SetAdditionalParam", 0xaae64, INVOKE_FUNC, {{L"ParamName", Type::text, in}, {L"ParamValue", Type::variant, in}}},
    {L"GetAdditionalParam",
     0xaae65,
     INVOKE_FUNC,
     {{L"ParamName", Type::text, in}, {L"ParamValue", Type::variantPointer, PARAMFLAG_FIN | PARAMFLAG_FOUT}}},
};

std::vector<Function> accessorsOf(const std::vector<Property>& properties) {
  std::vector<Function> functions;
  for (const Property& row : properties) {
    std::vector<Parameter> index;
    if (row.access == Access::indexed) index = {{L"Channel", Type::integer, in}};
    auto get = index;
    get.push_back({L"pVal", row.type, result, true});
    functions.push_back({row.name, row.id, INVOKE_PROPERTYGET, get});
    if (row.access == Access::readOnly) continue;
    auto put = index;
    put.push_back({nullptr, row.type, in});
    functions.push_back(
        {row.name, row.id, row.access == Access::byReference ? INVOKE_PROPERTYPUTREF : INVOKE_PROPERTYPUT, put});
  }
  return functions;
}

}  // namespace av::test
