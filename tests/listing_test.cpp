// Listings in the host's language: what the translator makes of the language's finer points, and
// what it refuses, as the host's compiler would.
#include <gtest/gtest.h>

#include <string>

#include "tests/command.h"

namespace tests {
namespace {

struct Row {
  const char* listing;
  const char* printed;
};

constexpr Row kRows[] = {
    // Numbers: what binds tighter, whole and real quotients, how they print.
    {R"vb(MsgBox Str(-2 ^ 2) + " " + Str(2 + 3 * 4 Mod 5) + " " + Str(10 - 4 - 3)
MsgBox Str(-7 \ 2) + " " + Str(-7 Mod 3) + " " + Str(7 / 2) + " " + Str(6 / 2) + " " + Str(0.1 + 0.2)
MsgBox Str(&hFF And &h0F) + " " + Str(1 Or 4) + " " + Str(1.5e3) + " " + Hex(255) + " " + Str(Val("12.5x"))
Dim n As Integer = 2.9
MsgBox Str(n) + " " + Format(1234567.891, "#,##0.00") + " " + Format(5, "000") + " " + Format(0.5, "0%")
)vb",
     "-4 4 3\n-3 -1 3.5 3 0.3\n15 5 1500 FF 12.5\n2 1,234,567.89 005 50%\n"},
    // Strings compare whatever the case; quotes are doubled; a comment is none within a string.
    {R"vb(If "Käse" = "KÄSE" And "a" < "B" And Not ("a" <> "A") Then MsgBox "same" Else MsgBox "other"
MsgBox "a ""b"" // ' c" ' comment
rem nothing
mSGbOX "one" + _ // goes on
  "two"
)vb",
     "same\na \"b\" // ' c\nonetwo\n"},
    {R"vb(MsgBox Mid("Grüße", 4) + Left("Grüße", 3) + Right("Grüße", 2) + Str(Len("Grüße")) + Str(LenB("Grüße"))
MsgBox Str(InStr("Grüße", "ße")) + Str(InStrB("Grüße", "ße")) + Str(InStr(3, "abab", "a")) + Str("abc".InStr("C"))
MsgBox NthField("a;b;c", ";", 2) + Str(CountFields("a;b;c", ";")) + Join(Split("a-b", "-"), "+") + Trim(" x ") + "|"
MsgBox ReplaceAll("xAxa", "a", "%1") + Replace("xAxa", "A", "") + Uppercase("käse") + Chr(228) + Str(Asc("ä"))
)vb",
     "ßeGrüße57\n4533\nb3a+bx|\nx%1x%1xxaKÄSEä228\n"},
    // Encodings: bytes and characters, none at all, and strings that meet.
    {R"vb(Dim latin As String = ConvertEncoding("Käse", Encodings.ISOLatin1)
Dim raw As String = DefineEncoding("Käse", Nil)
MsgBox Str(LenB(latin)) + " " + Str(latin.Encoding = Encodings.ISOLatin1) + " " + latin + " " + Mid(latin, 2, 1) + "é"
MsgBox Str(raw.Encoding Is Nil) + " " + Str(Len(raw)) + " " + raw.DefineEncoding(Encodings.UTF8)
MsgBox ConvertEncoding("Käse", Encodings.ASCII)
)vb",
     "4 True Käse äé\nTrue 5 Käse\nK?se\n"},
    // The end of a For is looked at each time; Next and leaving in all their ways.
    {R"vb(Dim a() As String = Array("b", "a")
For i As Integer = 0 To a.Ubound
  If a.Ubound < 3 Then a.Append Str(i)
Next
Dim n As Integer
For n = 9 To 1 Step -4
Next n
For i As Integer = 3 DownTo 1
  If i = 2 Then Continue
  n = n * 10 + i
Next
Do Until n = -29
  n = n + 1
  If n > 0 Then Exit Do
Loop
MsgBox Join(a, ",") + " " + Str(n)
)vb",
     "b,a,0,1 -29\n"},
    {R"vb(For i As Integer = 0 To 12
  Select Case i
  Case 1, 3 To 5, Is > 11
    MsgBox Str(i)
  Case 2
  Case Else
    If i > 6 Then Exit For
  End Select
Next
)vb",
     "1\n3\n4\n5\n"},
    // A Return and a Continue out of Try do Finally; a Function without Return answers nothing.
    {R"vb(Function Find(a() As String, s As String = "c") As Integer
  For i As Integer = 0 To 9
    Try
      If a(i) = s Then Return i
      If a(i) = "a" Then Continue
      MsgBox "other"
    Finally
      MsgBox "finally " + Str(i)
    End Try
  Next
End Function
Function Nothing() As String
End Function
MsgBox Str(Find(Array("a", "b", "c"))) + Nothing
Try
  MsgBox Str(Find(Array("b"), "x"))
Catch e As NilObjectException
  MsgBox "nil"
Catch e As RuntimeException
  If e IsA OutOfBoundsException Then MsgBox "out of bounds"
End Try
)vb",
     "finally 0\nother\nfinally 1\nfinally 2\n2\nother\nfinally 0\nfinally 1\nout of bounds\n"},
    // Arrays are shared, hold what was put where, and grow and shrink.
    {R"vb(Dim a(2), b() As Integer
a(1) = 7
b = a
b.Insert 0, 5
b.Remove 1
Redim b(3)
MsgBox Str(Ubound(a)) + Str(a(0)) + Str(a.IndexOf(7)) + Str(a(3))
Dim words() As String = Split("pear Apple fig", " ")
words.Sort
For Each word As String In words
  MsgBox word
Next
Dim many As String = "x"
For i As Integer = 1 To 17
  many = many + " " + many
Next
MsgBox Str(Ubound(Split(many)))
)vb",
     "3510\nApple\nfig\npear\n131071\n"},
    // Keys in any case; a Variant turns into what is asked of it.
    {R"vb(Dim d As New Dictionary
d.Value("One") = 1
d.Value("oNE") = d.Value("ONE") + 1
d.Value("list") = Array("x")
Dim list() As String = d.Value("list")
MsgBox Str(d.Count) + d.Keys(0) + Str(d.Value("one")) + d.Lookup("none", "-") + list(0) + Str(d.HasKey("two"))
d.Value("block") = New MemoryBlock(3)
d.Value("object") = New RegExZRK
Dim block As MemoryBlock = d.Value("block")
MsgBox Str(block.Size) + Str(d.Value("object") IsA RegExZRK) + Str(d.Value("list") IsA RegExZRK)
Try
  MsgBox d.Value("none")
Catch e As KeyNotFoundException
  MsgBox "no such key"
End Try
)vb",
     "2One2-xFalse\n3TrueFalse\nno such key\n"},
    {R"vb(Dim m As MemoryBlock = "abcd"
m.UInt16Value(1) = &h5A59
MsgBox m.StringValue(1, 3) + Str(m.Byte(0)) + Str(m.Size) + m
Try
  m.Byte(4) = 1
Catch e As OutOfBoundsException
  MsgBox "outside"
End Try
)vb",
     "YZd974aYZd\noutside\n"},
    // The class: overloads by type, properties both ways, constants, arrays to and from it, Nil.
    {R"vb(Dim re As New RegExZRK(30)
re.COMPILEOPTIONCASELESS = True
If re.compile("(?<x>b)") And re.Execute("aB") > 0 Then MsgBox re.Substring("x") + Str(re.Offset(0)) + Str(re.Execute(2))
MsgBox Str(re.Lasterror = RegExZRK.ErrorNoMatch) + Str(re.VectorSize) + Join(re.Match(Array("ab", "c", "b")), ",")
Dim mixed() As Variant = Array("abc", 5)
MsgBox re.Match(mixed, True)(0) + Str(re.ExecuteMemory("xab", 1)) + re.TextMemory.StringValue(0, 2)
)vb",
     "B1-1\nTrue51ab,b\n52xa\n"},
    {"Dim re As RegExZRK\nTry\n  Call re.Study\nCatch e As NilObjectException\n  MsgBox "
     "\"nil\"\nEnd Try\n",
     "nil\n"},
    {"MsgBox \"first\"\nRaise New OutOfBoundsException\n",
     "first\nlisting.xojo_code:2: unhandled OutOfBoundsException\nexit 1"},
};

TEST(Listing, RunsAsTheHostWouldRunIt) {
  for (const auto& [listing, printed] : kRows) {
    EXPECT_EQ(RunProgram("listing.xojo_code", listing), printed) << listing;
  }
}

// Listings, and the line and the words of their refusal.
constexpr Row kRefusals[] = {
    // What the host's compiler refuses: types,
    {"Dim n As Integer = \"5\"", "1: n: expected an Integer, not a String"},
    {"Dim s As String = Nil", "1: s: expected a String, not Nil"},
    {"Dim s As String = \"a\" + 1", "1: + does not take a String and an Integer"},
    {"Dim b As Boolean = 5 = \"5\"", "1: = does not take an Integer and a String"},
    {"Dim s() As String = Array(1, 2)", "1: an Array of String holds no Integer"},
    {"If 1 Then MsgBox \"x\"", "1: the condition: expected a Boolean, not an Integer"},
    {"MsgBox 5", "1: message of MsgBox: expected a String, not an Integer"},
    {"Sub A(x As Integer)\nEnd Sub\nA \"x\"", "3: x of A: expected an Integer, not a String"},
    {"For Each c As String In \"abc\"\nNext", "1: For Each takes an array, not a String"},
    {"Function F() As Integer\nReturn \"x\"\nEnd Function",
     "2: what is answered here: expected an Integer, not a String"},
    {"Function F() As Integer\nReturn\nEnd Function", "2: F answers an Integer"},
    // arguments,
    {"Dim re As New RegExZRK\nCall re.Compile", "2: Compile takes 1 argument, not 0"},
    {"Dim re As New RegExZRK(300, 2)", "1: Constructor takes 0 to 1 arguments, not 2"},
    {"MsgBox Mid(\"abc\")", "1: Mid takes 2 to 3 arguments, not 1"},
    // names,
    {"MsgBox nothing", "1: there is no nothing"},
    {"x = 5", "1: there is no x"},
    {"Dim d As Foo", "1: there is no type Foo"},
    {"Dim x As Integer\nDim X As String", "2: X is declared already"},
    {"If True Then\nDim x As Integer\nEnd If\nx = 5", "4: there is no x"},
    {"Dim x As Integer\nSub A()\nx = 5\nEnd Sub", "3: there is no x"},
    {"Dim re As New RegExZRK\nCall re.Compiel(\"a\")", "2: RegExZRK has no Compiel"},
    {"MsgBox RegExZRK.Compile(\"a\")", "1: the class RegExZRK itself has no Compile"},
    {"Dim re As New RegExZRK\nre.Constructor(3)", "2: only New calls a Constructor"},
    // what can be set, and what is done with a value,
    {"Dim re As New RegExZRK\nre.Count = 4", "2: Count cannot be set"},
    {"Const k = 5\nk = 6", "2: a constant takes no new value"},
    {"Dim re As New RegExZRK\nre.Compile(\"a\")",
     "2: Compile answers a Boolean that nobody takes; write Call before it"},
    // and blocks.
    {"If True Then\nMsgBox \"x\"", "1: this If has no end"},
    {"While True\nEnd If", "2: End If stands where the While of line 1 has no end yet"},
    {"Sub A()\nCatch e As RuntimeException\nEnd Sub", "2: Catch stands outside of Try"},
    {"Dim i As Integer\nFor i = 0 To 3\nNext j",
     "3: Next j ends the For of line 2, which counts i"},
    {"Select Case 5\nMsgBox \"a\"\nEnd Select", "2: this stands before the first Case"},
    {"Exit", "1: Exit stands outside of a loop"},
    // What the translator does not know.
    {"Static x As Integer", "1: not understood from here: x As Integer"},
    {"Dim a(2, 3) As Integer", "1: a has more than one dimension"},
    {"Sub A(ByRef x As Integer)\nEnd Sub", "1: ByRef is not known here"},
    {"Dim x As Integer = 1 + _\n\n", "1: the line ends too early"},
    {"MsgBox \"abc", "1: not understood from here: \"abc"},
};

TEST(Listing, RefusesByLineAndName) {
  for (const auto& [listing, refusal] : kRefusals) {
    EXPECT_EQ(RunProgram("listing.xojo_code", listing),
              "listing.xojo_code:" + std::string(refusal) + "\nexit 1")
        << listing;
  }
}

}  // namespace
}  // namespace tests
