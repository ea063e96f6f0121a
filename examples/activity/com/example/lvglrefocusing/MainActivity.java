package com.example.lvglrefocusing;

import java.io.File;
import java.util.Arrays;
import java.util.List;

/**
 * The native methods of the library's test activity, without the activity:
 * loads the library and makes the calls that it is told to make.
 *
 * <pre>java -cp CLASSES com.example.lvglrefocusing.MainActivity [LIBRARY [CALL...]]</pre>
 *
 * LIBRARY is the path of the shared library; without one it is looked for by
 * its name. The calls are init, start and close unless others are given. Sample
 * files are read from /sdcard; the log tells which were found.
 */
public final class MainActivity {
  /** Reads the sample files into buffers that stay until closeGL. */
  public native void initGL();

  /** Closes the library's session and frees the buffers; 0 when all went well. */
  public native int closeGL();

  /** Logs how long the harness was waited for; 0 when all went well. */
  public native int startGL();

  private void call(String name) {
    switch (name) {
      case "init":
        initGL();
        System.out.println("initGL");
        break;
      case "start":
        System.out.println("startGL = " + startGL());
        break;
      case "close":
        System.out.println("closeGL = " + closeGL());
        break;
      default:
        throw new IllegalArgumentException("no such call: " + name);
    }
  }

  public static void main(String[] arguments) {
    if (arguments.length > 0) {
      System.load(new File(arguments[0]).getAbsolutePath());
    } else {
      System.loadLibrary("zuQelRT_GL");
    }
    List<String> calls = arguments.length > 1
        ? Arrays.asList(arguments).subList(1, arguments.length)
        : List.of("init", "start", "close");
    MainActivity activity = new MainActivity();
    calls.forEach(activity::call);
  }
}
