using System;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;

/// The library's entries. Texts are UTF-8 that ends with a zero byte; one that an entry returns stays the library's.
static class VornServer
{
    [DllImport("VornServer", CallingConvention = CallingConvention.Cdecl)]
    public static extern void HttpServerThread(IntPtr unused);
    [DllImport("VornServer", CallingConvention = CallingConvention.Cdecl)]
    public static extern void PipeServerThread(IntPtr unused);
    [DllImport("VornServer", CallingConvention = CallingConvention.Cdecl)]
    public static extern void ChuanKouServerThread(byte[] line, byte[] reply);
    [DllImport("VornServer", CallingConvention = CallingConvention.Cdecl)]
    [return: MarshalAs(UnmanagedType.I1)]
    public static extern bool RtnGet_SxGet();
    [DllImport("VornServer", CallingConvention = CallingConvention.Cdecl)]
    [return: MarshalAs(UnmanagedType.I1)]
    public static extern bool RtnSet_SxGet();
    [DllImport("VornServer", CallingConvention = CallingConvention.Cdecl)]
    public static extern IntPtr Rtn_Get_Get();
    [DllImport("VornServer", CallingConvention = CallingConvention.Cdecl)]
    public static extern IntPtr Rtn_Set_Get();
}

static class Host
{
    static string Text(IntPtr text)
    {
        int length = 0;
        while (Marshal.ReadByte(text, length) != 0) ++length;
        var bytes = new byte[length];
        Marshal.Copy(text, bytes, 0, length);
        return Encoding.UTF8.GetString(bytes);
    }

    /// The reply to one line of a serial link, at most 192 bytes with their end.
    static string Line(string line)
    {
        var reply = new byte[192];
        VornServer.ChuanKouServerThread(Encoding.UTF8.GetBytes(line + "\0"), reply);
        return Encoding.UTF8.GetString(reply, 0, Array.IndexOf(reply, (byte)0));
    }

    static void Main()
    {
        Console.OutputEncoding = new UTF8Encoding(false);
        // Each entry stays inside, so each gets a thread of its own, which does not hold up the program's end.
        new Thread(() => VornServer.HttpServerThread(IntPtr.Zero)) { IsBackground = true }.Start();
        new Thread(() => VornServer.PipeServerThread(IntPtr.Zero)) { IsBackground = true }.Start();
        Console.WriteLine("line:  " + Line("Get/NONE"));
        // Fetch the log of exchanges: reads on one side, writes on the other.
        for (;;)
        {
            if (VornServer.RtnGet_SxGet()) Console.WriteLine("read:  " + Text(VornServer.Rtn_Get_Get()));
            if (VornServer.RtnSet_SxGet()) Console.WriteLine("write: " + Text(VornServer.Rtn_Set_Get()));
            Thread.Sleep(100);
        }
    }
}
