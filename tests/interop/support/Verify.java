import java.nio.file.Files;
import java.nio.file.Path;
import sun.security.pkcs.PKCS7;
import sun.security.pkcs.SignerInfo;

/** Arguments are pairs: a signed message, and its content or "-". Writes "good" or "bad" for each. */
public class Verify {
    static boolean verifies(String message, String content) {
        try {
            PKCS7 read = new PKCS7(Files.readAllBytes(Path.of(message)));
            SignerInfo[] good = content.equals("-") ? read.verify() : read.verify(Files.readAllBytes(Path.of(content)));
            return good != null && good.length > 0;
        } catch (Exception failure) {
            return false;
        }
    }

    public static void main(String[] arguments) {
        for (int i = 0; i < arguments.length; i += 2) {
            System.out.println(verifies(arguments[i], arguments[i + 1]) ? "good" : "bad");
        }
    }
}
