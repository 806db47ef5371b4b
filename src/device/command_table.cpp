#include "device/command_table.h"

#include <algorithm>
#include <iterator>

namespace tw {
namespace {

struct Command {
  CommandId id;
  std::string_view keyword;
};

constexpr CommandId Id(uint32_t id) {
  return static_cast<CommandId>(id);
}

// The order is part of the language: of an id that stands more than once the first keyword is sent. Two ids
// reuse the keyword of another one: 86 (of 32) and 100 (of 10). 44, 98 and 99 are not used.
constexpr Command kTable[] = {
    {Id(0), "#range"},         {Id(1), "#interval"},      {Id(2), "#threshold"},   {Id(3), "#offset"},
    {Id(4), "#deadzone"},      {Id(5), "#txlength"},      {Id(6), "#output"},      {Id(7), "#gain"},
    {Id(8), "#tvgmode"},       {Id(9), "#tvgs"},          {Id(10), "#speed"},      {Id(11), "#syncextern"},
    {Id(12), "#syncextmode"},  {Id(13), "#syncoutpol"},   {Id(14), "#iden"},       {Id(15), "#echo"},
    {Id(16), "#sound"},        {Id(17), "#samples"},      {Id(18), "#reset"},      {Id(19), "#nmeadbt"},
    {Id(20), "#nmeadpt"},      {Id(21), "#nmeamtw"},      {Id(22), "#nmeaxdr"},    {Id(23), "#nmeaema"},
    {Id(24), "#default"},      {Id(25), "#gainlow"},      {Id(26), "#gainhigh"},   {Id(25), "#gainl"},
    {Id(26), "#gainh"},        {Id(27), "#tvgsprd"},      {Id(28), "#tvgabslow"},  {Id(29), "#tvgabshigh"},
    {Id(28), "#tvgabsl"},      {Id(29), "#tvgabsh"},      {Id(30), "#setfreqlow"}, {Id(31), "#setfreqhigh"},
    {Id(30), "#setfl"},        {Id(31), "#setfh"},        {Id(32), "#txpower"},    {Id(33), "##freql"},
    {Id(33), "#getfreql"},     {Id(33), "#getfl"},        {Id(34), "##freqh"},     {Id(34), "#getfreqh"},
    {Id(34), "#getfh"},        {Id(35), "#samplfreq"},    {Id(36), "#medianflt"},  {Id(37), "#movavgflt"},
    {Id(38), "#nmearate"},     {Id(39), "##powsave"},     {Id(40), "##intoffset"}, {Id(41), "##accxoff"},
    {Id(42), "##accyoff"},     {Id(43), "##acczoff"},     {Id(45), "#anlgmode"},   {Id(46), "#anlgrate"},
    {Id(47), "#anlgmax"},      {Id(48), "#uartflow"},     {Id(49), "#mniface"},    {Id(50), "#mnproto"},
    {Id(51), "#mnid"},         {Id(52), "#mnsync"},       {Id(53), "#nmeadptoff"}, {Id(54), "#uartbit"},
    {Id(55), "#uartpar"},      {Id(56), "#descript"},     {Id(57), "##zerogainl"}, {Id(58), "##zerogainh"},
    {Id(59), "##maxrangel"},   {Id(60), "##maxrangeh"},   {Id(61), "##factory"},   {Id(62), "##setacczero"},
    {Id(63), "#nmeadpzero"},   {Id(64), "#swversion"},    {Id(65), "#tvgabs"},     {Id(66), "#intdevid"},
    {Id(67), "#usbovrd"},      {Id(68), "#serial"},       {Id(69), "#attn"},       {Id(70), "#pingonce"},
    {Id(71), "#time"},         {Id(72), "#nmeazda"},      {Id(73), "#getfreq"},    {Id(74), "#info"},
    {Id(75), "#go"},           {Id(76), "#rangel"},       {Id(77), "#rangeh"},     {Id(78), "#thresholdl"},
    {Id(79), "#thresholdh"},   {Id(80), "#offsetl"},      {Id(81), "#offseth"},    {Id(82), "#deadzonel"},
    {Id(83), "#deadzoneh"},    {Id(84), "#txlengthl"},    {Id(85), "#txlengthh"},  {Id(86), "#txpower"},
    {Id(87), "#txpowerh"},     {Id(88), "#tvgsprdl"},     {Id(89), "#tvgsprdh"},   {Id(90), "#attnl"},
    {Id(91), "#attnh"},        {Id(92), "##getsimul"},    {Id(93), "##vfreql"},    {Id(94), "##vfreqh"},
    {Id(95), "#setfreqdual"},  {Id(96), "##mingain"},     {Id(97), "##vfreq"},     {Id(100), "#speed"},
    {Id(101), "##maxlengthh"}, {Id(102), "##maxlengthl"}, {Id(103), "#smooth"},    {Id(104), "#outrate"},
    {Id(105), "#auto"},        {Id(106), "#preset"},
};
static_assert(std::size(kTable) == 114);
static_assert(std::none_of(std::begin(kTable), std::end(kTable), [](const Command& command) {
  return command.id == Id(44) || command.id == Id(98) || command.id == Id(99);
}));

constexpr size_t CountRepeatedKeywords() {
  size_t count = 0;
  for (const Command& row : kTable) {
    const auto sameKeyword = [&](const Command& other) { return other.keyword == row.keyword; };
    count += std::find_if(std::begin(kTable), std::end(kTable), sameKeyword) != &row ? 1 : 0;
  }
  return count;
}
static_assert(CountRepeatedKeywords() == 2);

}  // namespace

std::string_view KeywordOf(CommandId id) {
  const auto row =
      std::find_if(std::begin(kTable), std::end(kTable), [&](const Command& each) { return each.id == id; });
  return row == std::end(kTable) ? std::string_view() : row->keyword;
}

}  // namespace tw
