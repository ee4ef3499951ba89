// What the .NET hosts share. All hold the same session and print what each call came to, one line a call.
using System;
using System.Linq;
using System.Reflection;
using System.Threading;

public class Session {
    public short Port;
    public string Kind; // of the Ethernet interface
    public byte Own;    // number of this session's preset and input; the flags of four presets share a byte
    public Barrier Together = new Barrier(1);
    string label;

    // "main" runs where the program begins, then "first" and "second" at once, each on an STA thread of its own.
    // Arguments: port of kind Q, port of kind S.
    public static void Run(string[] words, Action<Session> talk) {
        // A port above 32767 is passed as a negative number.
        short[] ports = Array.ConvertAll(words, port => unchecked((short)ushort.Parse(port)));
        new Session { label = "main", Port = ports[0], Kind = "Q", Own = 70 }.Hold(talk);
        var both = new Barrier(2);
        var threads = new[] {
            new Session { label = "first", Port = ports[0], Kind = "Q", Own = 74, Together = both },
            new Session { label = "second", Port = ports[1], Kind = "S", Own = 78, Together = both },
        }.Select(session => new Thread(() => session.Hold(talk))).ToList();
        threads.ForEach(thread => thread.SetApartmentState(ApartmentState.STA));
        threads.ForEach(thread => thread.Start());
        threads.ForEach(thread => thread.Join());
    }

    public static string High => string.Concat(Enumerable.Range(128, 128).Select(code => (char)code));

    public void Line(string name, params object[] values) => Print(name, string.Join(", ", values.Select(Shown)));

    // A call that raises an error.
    public void Fails(string name, Func<object> call) {
        try {
            Line(name, call());
        } catch (Exception thrown) {
            // .NET Core 3.1 alone wraps the errors of early-bound calls, too.
            Exception error = thrown is TargetInvocationException ? thrown.InnerException : thrown;
            string number = error.HResult.ToString("X8");
            string sentence = number.StartsWith("800A") ? " " + error.Message : ""; // any other is the system's
            Print(name, error.GetType().Name + " " + number + sentence);
        }
    }

    void Hold(Action<Session> talk) {
        label += " " + Thread.CurrentThread.GetApartmentState();
        try {
            talk(this);
        } catch (Exception error) {
            Print("broke off", error.ToString());
            Together.RemoveParticipant();
        }
    }

    void Print(string name, string text) => Console.WriteLine(label + ": " + name + ": " + text);

    static string Shown(object value) {
        if (value == null) return "nothing";
        string text = value is byte[] bytes ? string.Concat(bytes.Select(b => (char)b)) : value.ToString();
        if (text.Any(c => c < ' ' || c > '~')) text = string.Concat(text.Select(c => ((int)c).ToString("X2")));
        return value.GetType().Name + " " + text;
    }
}
