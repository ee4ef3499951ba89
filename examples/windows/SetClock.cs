// C#, late bound. Sets the controller's clock to that of this PC and reads it back:
//   SetClock HOST PORT PASSWORD
// Build: csc SetClock.cs (.NET Framework), or in a project for Windows of .NET Core 3.1 or later. With `dynamic`, which
// .NET Core 3.1 cannot, a call reads: byte result = serial.OpenTCP(host, port, password).
using System;
using System.Reflection;

static class SetClock
{
    const byte Length = 7, Offset = 6; // year, month, day, weekday, hours, minutes, seconds

    // Calls a method, with its arguments by reference: what comes back in one stands in the array. Arguments behind the
    // last one, and those that are Type.Missing, are left out.
    static byte Call(object serial, string method, params object[] arguments)
    {
        ParameterModifier references = new ParameterModifier(Math.Max(arguments.Length, 1));
        for (int i = 0; i < arguments.Length; ++i) references[i] = true;
        return (byte)serial.GetType().InvokeMember(method, BindingFlags.InvokeMethod, null, serial, arguments,
            new[] { references }, null, null);
    }

    // Each character of a text is one byte.
    static string TextOf(DateTime time)
    {
        int weekday = time.DayOfWeek == DayOfWeek.Sunday ? 7 : (int)time.DayOfWeek;
        int[] fields = { time.Year % 100, time.Month, time.Day, weekday, time.Hour, time.Minute, time.Second };
        return string.Concat(Array.ConvertAll(fields, field => (char)field));
    }

    static DateTime TimeOf(string text)
    {
        return new DateTime(2000 + text[0], text[1], text[2], text[4], text[5], text[6]);
    }

    static byte Set(object serial)
    {
        byte result = Call(serial, "Ctl_Init", "W", TextOf(DateTime.Now), Length, Offset);
        if (result != 0) return result;
        object[] clock = { "R", "", Length, Offset };
        result = Call(serial, "Ctl_Init", clock);
        if (result == 0) Console.WriteLine("set to: {0:yyyy-MM-dd HH:mm:ss}", TimeOf((string)clock[1]));
        return result;
    }

    [STAThread]
    static int Main(string[] words)
    {
        if (words.Length != 3)
        {
            Console.Error.WriteLine("usage: SetClock HOST PORT PASSWORD");
            return 2;
        }
        object serial = Activator.CreateInstance(Type.GetTypeFromProgID("VelkCom.Serial", true));
        // The port is a signed 16-bit number.
        byte result = Call(serial, "OpenTCP", words[0], unchecked((short)ushort.Parse(words[1])), words[2]);
        if (result == 0) result = Set(serial);
        Call(serial, "CloseTCP");
        if (result != 0) Console.Error.WriteLine("SetClock: result " + result);
        return result == 0 ? 0 : 1;
    }
}
