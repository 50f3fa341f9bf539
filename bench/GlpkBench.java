import com.korvex.KVXEnv;
import com.korvex.KVXModel;
import com.korvex.KorvexJni;
import java.util.Arrays;
import org.gnu.glpk.GLPK;
import org.gnu.glpk.GLPKConstants;
import org.gnu.glpk.SWIGTYPE_p_double;
import org.gnu.glpk.SWIGTYPE_p_int;
import org.gnu.glpk.glp_prob;

/** Building a model from end to end: through the bridge into the solver, and by libglpk-java. */
public final class GlpkBench {
    private GlpkBench() {}

    private static int build(KVXEnv env, Bench.Data d, int rows) {
        try (KVXModel model = new KVXModel(env, "bench")) {
            char[] senses = new char[rows];
            Arrays.fill(senses, '<');
            return KorvexJni.addconstrs(model.handle(), rows, 0, new int[rows], null, null, senses,
                                        null, new double[rows], null) |
                KorvexJni.addvars(model.handle(), d.vars(), d.nonzeros(), d.beg(), d.ind(), d.val(),
                                  d.obj(), d.lb(), d.ub(), d.types(), null);
        }
    }

    private static int buildByGlpk(Bench.Data d, int rows) {
        glp_prob problem = GLPK.glp_create_prob();
        GLPK.glp_add_rows(problem, rows);
        for (int i = 1; i <= rows; i++)
            GLPK.glp_set_row_bnds(problem, i, GLPKConstants.GLP_UP, 0, 0);
        GLPK.glp_add_cols(problem, d.vars());
        SWIGTYPE_p_int ind = GLPK.new_intArray(6);
        SWIGTYPE_p_double val = GLPK.new_doubleArray(6);
        for (int j = 0; j < d.vars(); j++) {
            GLPK.glp_set_col_bnds(problem, j + 1, GLPKConstants.GLP_DB, d.lb()[j], d.ub()[j]);
            GLPK.glp_set_obj_coef(problem, j + 1, d.obj()[j]);
            for (int k = 0; k < 5; k++) {
                GLPK.intArray_setitem(ind, k + 1, d.ind()[5 * j + k] + 1);
                GLPK.doubleArray_setitem(val, k + 1, d.val()[5 * j + k]);
            }
            GLPK.glp_set_mat_col(problem, j + 1, 5, ind, val);
        }
        GLPK.delete_intArray(ind);
        GLPK.delete_doubleArray(val);
        GLPK.glp_delete_prob(problem);
        return 0;
    }

    public static void main(String[] args) {
        try (KVXEnv env = new KVXEnv()) {
            env.params().set("LogToConsole", 0);
            for (int nonzeros = 1000; nonzeros <= 1_000_000; nonzeros *= 10) {
                Bench.Data d = Bench.Data.of(nonzeros, false);
                int rows = d.vars();
                Arrays.setAll(d.ind(), k -> (k / 5 + k % 5 * (rows / 5)) % rows);
                Arrays.fill(d.val(), 1.5);
                Arrays.fill(d.ub(), 1);
                new Bench.Workload("build", nonzeros)
                    .with("bridge", () -> build(env, d, rows))
                    .with("glpk-java", () -> buildByGlpk(d, rows))
                    .measure();
            }
        }
    }
}
