// C#; not run by the tests, which have no .NET for Windows.
// Sets the controller's clock to that of this PC:
//   SetClock HOST PORT PASSWORD
// Build: csc SetClock.cs /r:Microsoft.CSharp.dll (.NET Framework), or in a project with <TargetFramework>net8.0-windows.
using System;

static class SetClock
{
    const byte Length = 7, Offset = 6; // year, month, day, weekday, hours, minutes, seconds

    [STAThread]
    static int Main(string[] words)
    {
        if (words.Length != 3)
        {
            Console.Error.WriteLine("usage: SetClock HOST PORT PASSWORD");
            return 2;
        }
        dynamic serial = Activator.CreateInstance(Type.GetTypeFromProgID("VelkCom.Serial", true));
        string password = words[2];
        // The port is a signed 16-bit number.
        byte result = serial.OpenTCP(words[0], unchecked((short)ushort.Parse(words[1])), ref password);
        if (result == 0)
        {
            DateTime now = DateTime.Now;
            int weekday = now.DayOfWeek == DayOfWeek.Sunday ? 7 : (int)now.DayOfWeek;
            int[] fields = { now.Year % 100, now.Month, now.Day, weekday, now.Hour, now.Minute, now.Second };
            string clock = string.Concat(Array.ConvertAll(fields, field => (char)field));
            result = serial.Ctl_Init("W", ref clock, Length, Offset);
        }
        serial.CloseTCP();
        Console.WriteLine(result == 0 ? "the clock is set" : "the clock is not set: result " + result);
        return result == 0 ? 0 : 1;
    }
}
